#pragma once

#include "detect/leaf_test.h"

#include "tarn/proximity_outcome.h"

namespace tarn::details {

class AABBHierarchy;

/// The outcome for one couple, and the triangles between which its distance was measured, if it was.
struct ProximityFinding {
    ProximityOutcome outcome;
    TriangleHit triangles;
};

/// Searches for the distance of two hierarchies at their current placements:
///  (1) The bound starts at the squared clearance and is tightened (see `TightenBound`).
///  (2) Leaf pairs, in traversal order (see `VisitLeafPairs`), are retained where their boxes are nearer than
///      the bound. Where the bound is not above 0, which retains none, those whose boxes overlap are still
///      tested for intersection. The first intersecting triangle pair ends the search.
///  (3) The retained leaf pairs are measured (see `CandidateEvaluation`); the nearest wins.
/// The clearance is taken as it stands: negative ones count by their square, NaN makes a bound that retains
/// nothing. Safe from any thread.
ProximityFinding SearchProximity(const AABBHierarchy& first, const AABBHierarchy& second, double clearance);

}  // namespace tarn::details
