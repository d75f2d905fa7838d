#pragma once

#include "detect/leaf_test.h"

namespace tarn::details {

class AABBHierarchy;

/// Whether any triangles intersect, by the rule of `FindFirstHit`. The order does not matter here, so the
/// wide trees are searched where the overlap is deepest, and what comes out is judged by the rule. Safe from
/// any thread.
bool HaveCrossing(const AABBHierarchy& first, const AABBHierarchy& second);

/// What `FindFirstHit` returns. Looks for any crossing first: most bodies that come close have none.
TriangleHit FindFirstHitFast(const AABBHierarchy& first, const AABBHierarchy& second);

}  // namespace tarn::details
