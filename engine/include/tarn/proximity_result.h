#pragma once

#include "tarn/collision_body.h"
#include "tarn/export.h"
#include "tarn/triangle_data.h"

#include <vector>

namespace tarn {

/// Two bodies, not owned, and the clearance that is asked of them.
struct TARN_API ProximityPair {
    ICollisionBody* First = nullptr;   ///< the first body
    ICollisionBody* Second = nullptr;  ///< the second body
    double Clearance = 0.0;            ///< in the caller's length unit

    ///@{
    /// The field of that name.
    ICollisionBody* get_First() const { return First; }
    ICollisionBody* get_Second() const { return Second; }
    double get_Clearance() const { return Clearance; }
    ///@}
};

/// One couple that intersects or comes within its clearance. The bodies are not owned and stand in the order
/// in which the configuration made the couple.
struct TARN_API ProximityPairResult {
    ICollisionBody* First = nullptr;   ///< the first body
    ICollisionBody* Second = nullptr;  ///< the second body
    /// The couple's clearance, as configured.
    double Clearance = 0.0;
    /// The measured distance, 0 when the bodies intersect.
    double distance = 0.0;
    /// Where the distance was measured, in world coordinates: P1 on the first body, P2 on the second. All
    /// zeros when they intersect.
    SegmentData Segment{};
    /// For the policies with triangles, the pair of triangles between which the distance was measured, the
    /// first body's first. Otherwise, and when the bodies intersect, empty.
    std::vector<TriangleDataPair> Triangles;
    /// Whether triangles intersect; a distance was measured otherwise.
    bool IntersectionFound = false;

    ///@{
    /// The field of that name.
    ICollisionBody* get_First() const { return First; }
    ICollisionBody* get_Second() const { return Second; }
    double get_Clearance() const { return Clearance; }
    bool get_IntersectionFound() const { return IntersectionFound; }
    SegmentData get_Segment() const { return Segment; }
    const std::vector<TriangleDataPair>& get_Triangles() const { return Triangles; }
    ///@}
};

/// The answer of a clearance check: a plain value whose body pointers are valid as long as the bodies live.
struct TARN_API ProximityResult {
    std::vector<ProximityPairResult> Pairs;  ///< the couples found
    /// The result's own list, which the detector leaves empty.
    std::vector<TriangleDataPair> Triangles;

    /// The couples found.
    const std::vector<ProximityPairResult>& get_Pairs() const { return Pairs; }
    /// The triangles of the first pair only; those of later pairs are reached through `get_Pairs`.
    const std::vector<TriangleDataPair>& get_Triangles() const {
        return Pairs.empty() ? Triangles : Pairs.front().Triangles;
    }
    /// Whether any couple was found.
    bool get_InterferenceDetected() const { return !Pairs.empty(); }
};

}  // namespace tarn
