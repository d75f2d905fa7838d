#pragma once

#include "ostrel/quarrix/collision_configuration_element.h"
#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/enumerations.h"
#include "ostrel/quarrix/export.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// One pair of a collision configuration, or one colliding pair of a result. All properties throw
/// `ObjectDisposedException` after disposal.
class QUARRIX_API CollisionCouple final : public DisposableRecord {
public:
    /// Throws `ArgumentNullException` ("first", then "second").
    CollisionCouple(std::shared_ptr<ICollisionConfigurationElement> first,
                    std::shared_ptr<ICollisionConfigurationElement> second,
                    CheckCoupleConfiguration checkConfiguration,
                    double tolerance);

    /// The first element.
    std::shared_ptr<ICollisionConfigurationElement> get_Element1() const;
    /// The second element.
    std::shared_ptr<ICollisionConfigurationElement> get_Element2() const;
    /// What is checked for the pair.
    CheckCoupleConfiguration get_CheckConfiguration() const;
    /// The tolerance that it was made with.
    double get_Clearance() const;

private:
    double tolerance_;
    std::shared_ptr<ICollisionConfigurationElement> first_;
    std::shared_ptr<ICollisionConfigurationElement> second_;
    CheckCoupleConfiguration check_configuration_;
};

}  // namespace Ostrel::Quarrix::Collisions
