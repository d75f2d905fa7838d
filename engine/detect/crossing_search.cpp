#include "detect/crossing_search.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "detect/hierarchy_traversal.h"
#include "detect/relative_frame.h"
#include "detect/wide_search.h"

#include <algorithm>
#include <cstddef>
#include <mutex>

namespace tarn::details {

namespace {

/// Whether the rule has nothing to descend into. True for most couples of an assembly.
bool EndAtRoots(const AABBHierarchy& first, const AABBHierarchy& second) {
    if (first.Root().IsEmpty() || second.Root().IsEmpty()) return true;
    return !Overlap(first.WorldBox(first.Root()), second.WorldBox(second.Root()));
}

}  // namespace

Crossings SearchCrossings(const AABBHierarchy& first,
                          const AABBHierarchy& second,
                          const RelativeFrame& frame) {
    const std::size_t most_triangles = std::max(first.LeafNumber(), second.LeafNumber());
    Crossings crossings;
    std::mutex access;
    SearchLimit limit(0.0);
    VisitNearLeafPairs(first, second, frame, SearchOrder::InDepth, limit, [&](const NodePair& leaves) {
        LeafTest leaf_test(most_triangles);
        if (!leaf_test.FindFirstHit(first.WorldTriangles(*leaves.first),
                                    second.WorldTriangles(*leaves.second)))
            return;
        // Few leaf pairs come this far, so it is here that the rule is asked which of them count.
        if (frame.LeavesAreApart(*leaves.first, *leaves.second)) return;
        const bool is_crossing = Overlap(first.WorldBox(*leaves.first), second.WorldBox(*leaves.second));
        const std::lock_guard lock(access);
        if (is_crossing) {
            crossings.found = true;
            limit.EndSearch();
        } else {
            crossings.beside_boxes.push_back(leaves);
        }
    });
    return crossings;
}

bool HaveCrossing(const AABBHierarchy& first, const AABBHierarchy& second) {
    if (EndAtRoots(first, second)) return false;
    const RelativeFrame frame(first, second);
    if (!frame.IsRigid()) return static_cast<bool>(FindFirstHit(first, second));
    return SearchCrossings(first, second, frame).found;
}

TriangleHit FindFirstHitFast(const AABBHierarchy& first, const AABBHierarchy& second) {
    if (EndAtRoots(first, second)) return {};
    const RelativeFrame frame(first, second);
    if (!frame.IsRigid()) return FindFirstHit(first, second);
    if (!SearchCrossings(first, second, frame).found) return {};
    return FindFirstHitFiltered(first, second, frame);
}

}  // namespace tarn::details
