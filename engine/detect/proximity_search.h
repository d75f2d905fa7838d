#pragma once

#include "detect/proximity_finding.h"

namespace tarn::details {

class AABBHierarchy;

/// Searches for the distance of two hierarchies at their current placements. This is the rule; what is faster
/// finds the same (see `SearchProximityFast`).
///  (1) The bound starts at the squared clearance and is tightened (see `TightenBound`).
///  (2) Leaf pairs, in traversal order (see `VisitLeafPairs`), are retained where their boxes are nearer than
///      the bound. Where the bound is not above 0, which retains none, those whose boxes overlap are still
///      tested for intersection. The first intersecting triangle pair (see `LeafTest`) ends the search.
///  (3) The retained leaf pairs are measured (see `LeafDistance`), but for those in which triangles touch; the
///      nearest wins, the first one in traversal order if several are.
/// The clearance is taken as it stands: negative ones count by their square, NaN makes a bound that retains
/// nothing. Safe from any thread.
ProximityFinding SearchProximity(const AABBHierarchy& first, const AABBHierarchy& second, double clearance);

}  // namespace tarn::details
