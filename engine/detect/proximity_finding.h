#pragma once

#include "detect/leaf_distance.h"
#include "detect/leaf_test.h"

#include "tarn/proximity_outcome.h"

#include <cstdint>

/// \file
/// What a search for the distance of two bodies finds, and how that is judged.

namespace tarn::details {

/// The outcome for one couple, and the triangles between which its distance was measured, if it was.
struct ProximityFinding {
    ProximityOutcome outcome;
    TriangleHit triangles;
};

/// The squared clearance: the largest number for clearances beyond its root.
double ClampedSquare(double clearance);

/// Whether a pair of boxes is looked at: nearer than the bound, or, where the bound admits nothing,
/// overlapping. World boxes nest exactly, so a refused pair has nothing below it that would be admitted.
inline bool IsWithin(double box_distance_squared, double bound) {
    return bound > 0.0 ? box_distance_squared < bound : box_distance_squared == 0.0;
}

/// Whether checks report it. Touching couples are not reported.
inline bool IsReported(const ProximityOutcome& outcome) {
    return outcome.state == ProximityState::Intersecting || outcome.state == ProximityState::WithinClearance;
}

/// Of bodies that have nothing within the clearance.
ProximityFinding FindingBeyond(double clearance_squared);
/// Of bodies that intersect.
ProximityFinding FindingOfCrossing(double clearance_squared);
/// Of bodies whose leaf pairs within the bound, so many, have been measured.
ProximityFinding FindingOf(const NearestTriangles& nearest,
                           double clearance_squared,
                           double bound,
                           std::uint64_t retained_count);

}  // namespace tarn::details
