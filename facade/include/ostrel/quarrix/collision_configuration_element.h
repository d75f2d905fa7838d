#pragma once

#include "ostrel/quarrix/collision_element_owner.h"
#include "ostrel/quarrix/event.h"
#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"

#include <array>
#include <memory>
#include <string>

namespace Ostrel::Quarrix::Collisions {

/// An object of the caller's scene that configurations hold. Callers implement it, or rather
/// `ICollisionElement`, which has a mesh; elements without one are refused.
///
/// The library calls an element from whatever thread uses a configuration or raises an event, and never
/// while it holds the lock of the element's body.
class QUARRIX_API ICollisionConfigurationElement : public virtual Object {
public:
    /// For reports and scene files.
    virtual std::string get_Name() const = 0;
    /// What the element is grouped by. May be null.
    virtual std::shared_ptr<ICollisionElementOwner> get_Owner() const = 0;
    /// The placement, local to world, row by row: the first twelve values are used, the rest is never read.
    virtual std::array<double, 16> get_Position() const = 0;
    /// For callers; nothing in the library reads it.
    virtual std::array<double, 16> get_PositionFromBase() const = 0;

    /// To be raised after the position has changed.
    virtual Event& get_PositionChanged() = 0;
    /// To be raised after the mesh has changed.
    virtual Event& get_CollisionElementChanged() = 0;
    /// For callers; nothing in the library subscribes to it.
    virtual Event& get_FromBasePositionChanged() = 0;
};

}  // namespace Ostrel::Quarrix::Collisions
