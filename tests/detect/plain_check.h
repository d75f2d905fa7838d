#pragma once

#include "core/collision_body.h"
#include "core/plane.h"
#include "core/triangle_intersection.h"
#include "detect/triangle_separation.h"
#include "detect/true_distance.h"

#include "tarn/triangle_data.h"

#include <gtest/gtest.h>

#include <vector>

namespace tarn::test {

/// The interference rules told once more without any thought of speed: every world box and triangle is
/// computed from the placement when it is looked at, on one thread, and all hits are collected. Which
/// triangles are shown apart is not told again, but each is held against the true distance.
inline std::vector<details::Triangle> PlainWorldTriangles(const details::AABBHierarchyNode& node,
                                                          const MATRIX& placement) {
    std::vector<details::Triangle> triangles;
    for (const details::Triangle& triangle : node.LocalTriangles())
        triangles.push_back(Place(placement, triangle));
    return triangles;
}

inline void CollectPlainHits(const std::vector<details::Triangle>& first,
                             const std::vector<details::Triangle>& second,
                             std::vector<TriangleDataPair>& hits) {
    for (const details::Triangle& i : first) {
        for (const details::Triangle& j : second) {
            if (!TrianglesIntersect(j, details::PlaneOf(j), i, details::PlaneOf(i))) continue;
            if (details::AreShownApart(i, j))
                EXPECT_GT(TrueDistanceSquared(i, j), 0.0) << "a right hit would be lost";
            else
                hits.push_back({i, j});
        }
    }
}

/// All hits below two nodes in traversal order.
inline void CollectPlainHits(const details::CollisionBody& first,
                             const details::AABBHierarchyNode& a,
                             const details::CollisionBody& second,
                             const details::AABBHierarchyNode& b,
                             std::vector<TriangleDataPair>& hits) {
    const MATRIX& to_a = first.CurrentMatrix();
    const MATRIX& to_b = second.CurrentMatrix();
    if (!Overlap(Place(to_a, a.LocalBox()), Place(to_b, b.LocalBox()))) return;
    if (a.IsLeaf() && b.IsLeaf()) {
        CollectPlainHits(PlainWorldTriangles(a, to_a), PlainWorldTriangles(b, to_b), hits);
    } else if (b.IsLeaf() || (!a.IsLeaf() && a.LocalBox().extent_sum >= b.LocalBox().extent_sum)) {
        CollectPlainHits(first, *a.FirstChild(), second, b, hits);
        CollectPlainHits(first, *a.SecondChild(), second, b, hits);
    } else {
        CollectPlainHits(first, a, second, *b.FirstChild(), hits);
        CollectPlainHits(first, a, second, *b.SecondChild(), hits);
    }
}

/// All hits of two bodies in traversal order.
inline std::vector<TriangleDataPair> PlainHits(const details::CollisionBody& first,
                                               const details::CollisionBody& second) {
    std::vector<TriangleDataPair> hits;
    CollectPlainHits(first, first.Hierarchy()->Root(), second, second.Hierarchy()->Root(), hits);
    return hits;
}

/// All hits, boxes or not.
inline std::vector<TriangleDataPair> BruteForceHits(const details::CollisionBody& first,
                                                    const details::CollisionBody& second) {
    std::vector<TriangleDataPair> hits;
    for (const auto& a : first.Hierarchy()->Nodes()) {
        for (const auto& b : second.Hierarchy()->Nodes())
            CollectPlainHits(PlainWorldTriangles(a, first.CurrentMatrix()),
                             PlainWorldTriangles(b, second.CurrentMatrix()), hits);
    }
    return hits;
}

}  // namespace tarn::test
