#include "ostrel/quarrix/collision_factory.h"

#include "configuration/native_collision_configuration_wrapper.h"
#include "configuration/native_proximity_configuration_wrapper.h"
#include "detector/native_collision_detector_wrapper.h"
#include "detector/native_proximity_detector_wrapper.h"

namespace Ostrel::Quarrix::Collisions {

std::shared_ptr<ICollisionDetector> CollisionFactory::MakeCollisionDetector() {
    return std::make_shared<NativeCollisionDetectorWrapper>();
}

std::shared_ptr<ICollisionConfiguration> CollisionFactory::MakeCollisionConfiguration() {
    return std::make_shared<NativeCollisionConfigurationWrapper>();
}

std::shared_ptr<IProximityDetector> CollisionFactory::MakeProximityDetector() {
    return std::make_shared<NativeProximityDetectorWrapper>();
}

std::shared_ptr<IProximityConfiguration> CollisionFactory::MakeProximityConfiguration() {
    return std::make_shared<NativeProximityConfigurationWrapper>();
}

}  // namespace Ostrel::Quarrix::Collisions
