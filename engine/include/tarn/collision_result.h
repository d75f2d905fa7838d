#pragma once

#include "tarn/collision_body.h"
#include "tarn/export.h"
#include "tarn/triangle_data.h"

#include <vector>

namespace tarn {

/// Two bodies, not owned.
struct TARN_API CollisionPair {
    ICollisionBody* First = nullptr;   ///< the first body
    ICollisionBody* Second = nullptr;  ///< the second body

    ///@{
    /// The field of that name.
    ICollisionBody* get_First() const { return First; }
    ICollisionBody* get_Second() const { return Second; }
    ///@}
};

/// One interfering couple. The bodies are not owned and stand in the order in which the configuration made
/// the couple. `Triangles` is empty for the policies without triangles; for those with triangles it holds
/// exactly one pair of intersecting triangles in world coordinates, the first body's triangle first.
struct TARN_API CollisionPairResult {
    ICollisionBody* First = nullptr;          ///< the first body
    ICollisionBody* Second = nullptr;         ///< the second body
    std::vector<TriangleDataPair> Triangles;  ///< one pair, or none

    ///@{
    /// The field of that name.
    ICollisionBody* get_First() const { return First; }
    ICollisionBody* get_Second() const { return Second; }
    const std::vector<TriangleDataPair>& get_Triangles() const { return Triangles; }
    ///@}
};

/// The answer of an interference check: a plain value whose body pointers are valid as long as the bodies
/// live.
struct TARN_API CollisionResult {
    std::vector<CollisionPairResult> Pairs;  ///< the couples that interfere
    /// The result's own list, which the detector leaves empty.
    std::vector<TriangleDataPair> Triangles;

    /// The couples that interfere.
    const std::vector<CollisionPairResult>& get_Pairs() const { return Pairs; }
    /// The triangles of the first pair only; those of later pairs are reached through `get_Pairs`.
    const std::vector<TriangleDataPair>& get_Triangles() const {
        return Pairs.empty() ? Triangles : Pairs.front().Triangles;
    }
    /// Whether any couple interferes.
    bool get_InterferenceDetected() const { return !Pairs.empty(); }
};

}  // namespace tarn
