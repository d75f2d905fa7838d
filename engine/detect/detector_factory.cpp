#include "detect/collision_detector.h"

#include "tarn/factory.h"

namespace tarn {

ICollisionDetector* make_detector() {
    return make_unique_detector().release();
}

std::unique_ptr<ICollisionDetector> make_unique_detector() {
    return std::make_unique<details::CollisionDetector>();
}

}  // namespace tarn
