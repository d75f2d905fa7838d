#pragma once

#include "ostrel/quarrix/collision_configuration_element.h"
#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/proximity_setting.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// One pair of a proximity configuration. All properties throw `ObjectDisposedException` after disposal.
class QUARRIX_API ProximityCouple final : public DisposableRecord {
public:
    /// Keeps the setting itself. Throws `ArgumentNullException` ("first", "second", "setting", in this
    /// order).
    ProximityCouple(std::shared_ptr<ICollisionConfigurationElement> first,
                    std::shared_ptr<ICollisionConfigurationElement> second,
                    std::shared_ptr<ProximitySetting> setting);

    /// The first element.
    std::shared_ptr<ICollisionConfigurationElement> get_Element1() const;
    /// The second element.
    std::shared_ptr<ICollisionConfigurationElement> get_Element2() const;
    /// A new copy at every call.
    std::shared_ptr<ProximitySetting> get_Setting() const;

private:
    std::shared_ptr<ICollisionConfigurationElement> first_;
    std::shared_ptr<ICollisionConfigurationElement> second_;
    std::shared_ptr<ProximitySetting> setting_;
};

}  // namespace Ostrel::Quarrix::Collisions
