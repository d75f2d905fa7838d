#pragma once

#include "tarn/collision_body.h"
#include "tarn/export.h"
#include "tarn/triangle_data.h"

#include <vector>

namespace tarn {

/// Two bodies, not owned, and the clearance that is asked of them.
struct TARN_API ProximityPair {
    ICollisionBody* First = nullptr;
    ICollisionBody* Second = nullptr;
    double Clearance = 0.0;

    ICollisionBody* get_First() const { return First; }
    ICollisionBody* get_Second() const { return Second; }
    double get_Clearance() const { return Clearance; }
};

/// One couple that intersects or comes within its clearance. The bodies are not owned and stand in the order
/// in which the configuration made the couple.
struct TARN_API ProximityPairResult {
    ICollisionBody* First = nullptr;
    ICollisionBody* Second = nullptr;
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
    bool IntersectionFound = false;

    ICollisionBody* get_First() const { return First; }
    ICollisionBody* get_Second() const { return Second; }
    double get_Clearance() const { return Clearance; }
    bool get_IntersectionFound() const { return IntersectionFound; }
    SegmentData get_Segment() const { return Segment; }
    const std::vector<TriangleDataPair>& get_Triangles() const { return Triangles; }
};

/// The answer of a clearance check: a plain value whose body pointers are valid as long as the bodies live.
struct TARN_API ProximityResult {
    std::vector<ProximityPairResult> Pairs;
    /// The result's own list, which the detector leaves empty.
    std::vector<TriangleDataPair> Triangles;

    const std::vector<ProximityPairResult>& get_Pairs() const { return Pairs; }
    /// The triangles of the first pair only; those of later pairs are reached through `get_Pairs`.
    const std::vector<TriangleDataPair>& get_Triangles() const {
        return Pairs.empty() ? Triangles : Pairs.front().Triangles;
    }
    bool get_InterferenceDetected() const { return !Pairs.empty(); }
};

}  // namespace tarn
