#pragma once

#include "detect/leaf_test.h"
#include "detect/pair_descent.h"

#include <vector>

namespace tarn::details {

class AABBHierarchy;
class RelativeFrame;

/// What intersects of two hierarchies, whose frame is rigid.
struct Crossings {
    /// Whether triangles intersect by the rule of `FindFirstHit`. If so, the search ended with that.
    bool found = false;
    /// Leaf pairs whose triangles intersect though their world boxes do not overlap: flush ones, up to
    /// rounding. In no particular order.
    std::vector<NodePair> beside_boxes;
};

/// Searches the filter trees, the deepest overlap first: the order does not matter here. What comes out is
/// judged by the rule.
Crossings SearchCrossings(const AABBHierarchy& first,
                          const AABBHierarchy& second,
                          const RelativeFrame& frame);

/// Whether any triangles intersect, by the rule of `FindFirstHit`. Safe from any thread.
bool HaveCrossing(const AABBHierarchy& first, const AABBHierarchy& second);

/// What `FindFirstHit` returns. Looks for any crossing first: most bodies that come close have none.
TriangleHit FindFirstHitFast(const AABBHierarchy& first, const AABBHierarchy& second);

}  // namespace tarn::details
