#pragma once

#include "ostrel/quarrix/object.h"

#include <cstdint>

namespace Ostrel::Quarrix::Collisions {

/// The identifier of an element's body in the engine: the element's hash code.
inline std::uint32_t NativeBodyId(const Object& element) {
    return static_cast<std::uint32_t>(element.GetHashCode());
}

/// The identifier of an owner in the engine: its hash code, sign-extended; 0 for null.
inline std::uint64_t NativeOwnerId(const Object* owner) {
    return owner ? static_cast<std::uint64_t>(std::int64_t{owner->GetHashCode()}) : 0;
}

}  // namespace Ostrel::Quarrix::Collisions
