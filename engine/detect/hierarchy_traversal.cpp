#include "detect/hierarchy_traversal.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "detect/pair_descent.h"
#include "detect/relative_frame.h"

#include <algorithm>
#include <cstddef>

namespace tarn::details {

namespace {

template <typename Admits>
TriangleHit FirstHit(const AABBHierarchy& first, const AABBHierarchy& second, Admits admits) {
    LeafTest leaf_test(std::max(first.LeafNumber(), second.LeafNumber()));
    TriangleHit hit;
    VisitLeafPairs(first, second, admits, [&](const NodePair& leaves) {
        hit = leaf_test.FindFirstHit(first.WorldTriangles(*leaves.first),
                                     second.WorldTriangles(*leaves.second));
        return static_cast<bool>(hit);
    });
    return hit;
}

}  // namespace

TriangleHit FindFirstHit(const AABBHierarchy& first, const AABBHierarchy& second) {
    // An empty tree has no box that placements and comparisons could act on.
    if (first.Root().IsEmpty() || second.Root().IsEmpty()) return {};
    return FirstHit(first, second, [&](const NodePair& pair) {
        return Overlap(first.WorldBox(*pair.first), second.WorldBox(*pair.second));
    });
}

TriangleHit FindFirstHitFiltered(const AABBHierarchy& first,
                                 const AABBHierarchy& second,
                                 const RelativeFrame& frame) {
    return FirstHit(first, second, [&](const NodePair& pair) {
        return Overlap(first.WorldBox(*pair.first), second.WorldBox(*pair.second)) &&
               !frame.SubtreesAreApart(*pair.first, *pair.second);
    });
}

}  // namespace tarn::details
