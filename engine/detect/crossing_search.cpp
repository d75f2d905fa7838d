#include "detect/crossing_search.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "core/plane.h"
#include "core/triangle.h"
#include "core/triangle_intersection.h"
#include "detect/filter_search.h"
#include "detect/hierarchy_traversal.h"
#include "detect/relative_frame.h"
#include "detect/triangle_separation.h"

#include <mutex>

namespace tarn::details {

namespace {

/// Whether the rule has nothing to descend into. True for most couples of an assembly.
bool EndAtRoots(const AABBHierarchy& first, const AABBHierarchy& second) {
    if (first.Root().IsEmpty() || second.Root().IsEmpty()) return true;
    return !Overlap(first.WorldBox(first.Root()), second.WorldBox(second.Root()));
}

/// By the rule of `LeafTest`.
bool AreHit(const Triangle& first, const Triangle& second) {
    return TrianglesIntersect(second, PlaneOf(second), first, PlaneOf(first)) &&
           !AreShownApart(first, second);
}

}  // namespace

Crossings SearchCrossings(const AABBHierarchy& first,
                          const AABBHierarchy& second,
                          const RelativeFrame& frame) {
    const auto first_triangles = first.LocalTriangles();
    const auto second_triangles = second.LocalTriangles();
    Crossings crossings;
    std::mutex access;
    SearchLimit limit(0.0);
    const auto visit = [&](const LeafTriangle& a, const LeafTriangle& b) {
        // Placed here and now, which gives the same bits as the trees' own world triangles.
        const Triangle a_triangle = Place(first.Placement(), first_triangles[a.triangle]);
        const Triangle b_triangle = Place(second.Placement(), second_triangles[b.triangle]);
        if (!AreHit(a_triangle, b_triangle)) return;
        const NodePair leaves{&first.Nodes()[a.leaf], &second.Nodes()[b.leaf]};
        const bool is_crossing = Overlap(first.WorldBox(*leaves.first), second.WorldBox(*leaves.second));
        const std::lock_guard lock(access);
        if (is_crossing) {
            crossings.found = true;
            limit.EndSearch();
        } else {
            crossings.beside_boxes.push_back(leaves);
        }
    };
    VisitNearTriangles(first, second, frame, SearchGoal::Crossings, limit, visit);
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
