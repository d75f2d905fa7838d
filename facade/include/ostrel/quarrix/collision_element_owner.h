#pragma once

#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// What groups elements. Only its identity, that is its hash code, matters to the library.
class QUARRIX_API ICollisionElementOwner : public virtual Object {
public:
    /// For callers; nothing in the library reads it. May be null.
    virtual std::shared_ptr<ICollisionElementOwner> get_Parent() const = 0;
};

}  // namespace Ostrel::Quarrix::Collisions
