#include "detect/crossing_search.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "detect/hierarchy_traversal.h"
#include "detect/relative_frame.h"
#include "detect/wide_search.h"

#include <algorithm>
#include <atomic>
#include <cstddef>

namespace tarn::details {

namespace {

/// A leaf pair that the rule tests has overlapping world boxes and is not shown apart. The wide search visits
/// every such pair and some others; as few of them hit, and hits are few, the rule is asked afterwards.
bool SearchCrossing(const AABBHierarchy& first, const AABBHierarchy& second, const RelativeFrame& frame) {
    const std::size_t most_triangles = std::max(first.LeafNumber(), second.LeafNumber());
    std::atomic<bool> is_found = false;
    SearchLimit limit(0.0);
    VisitNearLeafPairs(first, second, frame, limit, [&](const NodePair& leaves) {
        LeafTest leaf_test(most_triangles);
        if (!leaf_test.FindFirstHit(first.WorldTriangles(*leaves.first),
                                    second.WorldTriangles(*leaves.second)))
            return;
        if (!Overlap(first.WorldBox(*leaves.first), second.WorldBox(*leaves.second))) return;
        if (frame.LeavesAreApart(*leaves.first, *leaves.second)) return;
        is_found.store(true, std::memory_order_relaxed);
        limit.EndSearch();
    });
    return is_found.load(std::memory_order_relaxed);
}

/// Whether the rule has nothing to descend into. True for most couples of an assembly.
bool EndAtRoots(const AABBHierarchy& first, const AABBHierarchy& second) {
    if (first.Root().IsEmpty() || second.Root().IsEmpty()) return true;
    return !Overlap(first.WorldBox(first.Root()), second.WorldBox(second.Root()));
}

}  // namespace

bool HaveCrossing(const AABBHierarchy& first, const AABBHierarchy& second) {
    if (EndAtRoots(first, second)) return false;
    const RelativeFrame frame(first, second);
    if (!frame.IsRigid()) return static_cast<bool>(FindFirstHit(first, second));
    return SearchCrossing(first, second, frame);
}

TriangleHit FindFirstHitFast(const AABBHierarchy& first, const AABBHierarchy& second) {
    if (EndAtRoots(first, second)) return {};
    const RelativeFrame frame(first, second);
    if (!frame.IsRigid()) return FindFirstHit(first, second);
    if (!SearchCrossing(first, second, frame)) return {};
    return FindFirstHitFiltered(first, second, frame);
}

}  // namespace tarn::details
