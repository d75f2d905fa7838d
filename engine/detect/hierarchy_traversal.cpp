#include "detect/hierarchy_traversal.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "detect/pair_descent.h"

#include <cstddef>

namespace tarn::details {

TriangleHit FindFirstHit(const AABBHierarchy& first, const AABBHierarchy& second) {
    // An empty tree has no box that placements and comparisons could act on.
    if (first.Root().IsEmpty() || second.Root().IsEmpty()) return {};
    LeafTest leaf_test(std::size_t{first.LeafNumber()} + second.LeafNumber());
    TriangleHit hit;
    VisitLeafPairs(first, second, Overlap, [&](const NodePair& leaves) {
        hit = leaf_test.FindFirstHit(first.WorldTriangles(*leaves.first),
                                     second.WorldTriangles(*leaves.second));
        return static_cast<bool>(hit);
    });
    return hit;
}

}  // namespace tarn::details
