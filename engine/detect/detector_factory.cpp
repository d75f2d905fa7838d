#include "detect/collision_detector.h"
#include "detect/proximity_detector.h"

#include "tarn/factory.h"

namespace tarn {

ICollisionDetector* make_detector() {
    return make_unique_detector().release();
}

IProximityDetector* make_proximity_detector() {
    return make_unique_proximity_detector().release();
}

std::unique_ptr<ICollisionDetector> make_unique_detector() {
    return std::make_unique<details::CollisionDetector>();
}

std::unique_ptr<IProximityDetector> make_unique_proximity_detector() {
    return std::make_unique<details::ProximityDetector>();
}

}  // namespace tarn
