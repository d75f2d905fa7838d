#pragma once

#include "core/collision_body.h"

#include "tarn/collision_body.h"
#include "tarn/exception.h"

namespace tarn::details {

inline void RequireNotNull(const void* pointer) {
    if (!pointer) throw NullPointerException();
}

/// The body as the library's own class. Throws for null and for a body of a foreign class.
inline CollisionBody* RequireOwnClass(ICollisionBody* body) {
    RequireNotNull(body);
    auto* own = dynamic_cast<CollisionBody*>(body);
    if (!own) {
        throw BadCastException(
            "Could not recognize ICollisionBody as its internal implementation class (CollisionBody)");
    }
    return own;
}

}  // namespace tarn::details
