#pragma once

#include "ostrel/quarrix/collision_configuration.h"
#include "ostrel/quarrix/collision_detector.h"
#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"
#include "ostrel/quarrix/proximity_configuration.h"
#include "ostrel/quarrix/proximity_detector.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// What makes detectors and configurations that work with each other.
class QUARRIX_API ICollisionFactory : public virtual Object {
public:
    /// An interference checker.
    virtual std::shared_ptr<ICollisionDetector> MakeCollisionDetector() = 0;
    /// A configuration for it, without elements.
    virtual std::shared_ptr<ICollisionConfiguration> MakeCollisionConfiguration() = 0;
    /// A clearance checker.
    virtual std::shared_ptr<IProximityDetector> MakeProximityDetector() = 0;
    /// A configuration for it, without elements.
    virtual std::shared_ptr<IProximityConfiguration> MakeProximityConfiguration() = 0;
};

/// Makes a new object at every call and keeps none. Safe from any thread.
class QUARRIX_API CollisionFactory final : public ICollisionFactory {
public:
    std::shared_ptr<ICollisionDetector> MakeCollisionDetector() override;
    std::shared_ptr<ICollisionConfiguration> MakeCollisionConfiguration() override;
    std::shared_ptr<IProximityDetector> MakeProximityDetector() override;
    std::shared_ptr<IProximityConfiguration> MakeProximityConfiguration() override;
};

}  // namespace Ostrel::Quarrix::Collisions
