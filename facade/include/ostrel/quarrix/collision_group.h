#pragma once

#include "ostrel/quarrix/collision_element.h"
#include "ostrel/quarrix/event.h"
#include "ostrel/quarrix/export.h"

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// A composite element, for callers. It has no mesh of its own, so configurations refuse it.
class QUARRIX_API ICollisionGroup : public virtual ICollisionConfigurationElement {
public:
    /// Takes two points.
    using PointCallback =
        std::function<void(const std::array<double, 3>& first, const std::array<double, 3>& second)>;

    /// What the group consists of.
    virtual std::vector<std::shared_ptr<ICollisionElement>> get_Elements() const = 0;
    /// To be raised after that has changed.
    virtual Event& get_ElementListChanged() = 0;
    /// For callers; nothing in the library calls it.
    virtual void Load(const PointCallback& callback) const = 0;
};

}  // namespace Ostrel::Quarrix::Collisions
