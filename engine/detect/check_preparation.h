#pragma once

#include "core/collision_body.h"

#include "tarn/check_policy.h"
#include "tarn/collision_body.h"

#include <vector>

/// \file
/// What checks of both kinds do before they look at couples.

namespace tarn::details {

/// How a policy runs.
struct Procedure {
    bool stops_at_first_hit;
    bool records_triangles;
};

/// Throws `InvalidArgumentException` for a number that is no policy.
Procedure ProcedureOf(CheckPolicy policy);

/// Throws `LogicException`, naming the body, for one that was never built.
void RequireBuilt(const CollisionBody& body);

/// Whether all bodies are the library's own, and built.
bool AllAreBuilt(const std::vector<ICollisionBody*>& bodies);

/// The couples of a configuration whose placements are current, all ready to be checked. Throws
/// `std::bad_cast` for a configuration that is no `Provider`, and for the first couple with a body that was
/// never built. Bodies are few and couples many, so couples are looked at only where some body is unbuilt.
/// `bodies` are those of the configuration.
template <typename Provider, typename Configuration>
const auto& PrepareCouples(const Configuration& configuration, const std::vector<ICollisionBody*>& bodies) {
    const auto& couples = dynamic_cast<const Provider&>(configuration).Pairs();
    if (AllAreBuilt(bodies)) return couples;
    for (const auto& couple : couples) {
        RequireBuilt(*couple.First());
        RequireBuilt(*couple.Second());
    }
    return couples;
}

}  // namespace tarn::details
