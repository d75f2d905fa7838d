#pragma once

#include "core/collision_body.h"
#include "core/plane.h"
#include "core/triangle_intersection.h"

#include "tarn/triangle_data.h"

#include <vector>

namespace tarn::test {

/// The interference rules told once more without any thought of speed: every world box and triangle is
/// computed from the placement when it is looked at, on one thread, and all hits are collected.
inline std::vector<details::Triangle> PlainWorldTriangles(const details::AABBHierarchyNode& node,
                                                          const MATRIX& m) {
    const auto place = [&m](double& x, double& y, double& z) {
        const details::Vector3 p{x, y, z};
        x = m[0] * p.x + m[1] * p.y + m[2] * p.z + m[3];
        y = m[4] * p.x + m[5] * p.y + m[6] * p.z + m[7];
        z = m[8] * p.x + m[9] * p.y + m[10] * p.z + m[11];
    };
    std::vector<details::Triangle> triangles;
    for (details::Triangle triangle : node.LocalTriangles()) {
        place(triangle.v0x, triangle.v0y, triangle.v0z);
        place(triangle.v1x, triangle.v1y, triangle.v1z);
        place(triangle.v2x, triangle.v2y, triangle.v2z);
        triangles.push_back(triangle);
    }
    return triangles;
}

inline void CollectPlainHits(const std::vector<details::Triangle>& first,
                             const std::vector<details::Triangle>& second,
                             std::vector<TriangleDataPair>& hits) {
    for (const details::Triangle& i : first) {
        for (const details::Triangle& j : second) {
            if (TrianglesIntersect(j, details::PlaneOf(j), i, details::PlaneOf(i))) hits.push_back({i, j});
        }
    }
}

inline bool PlainDisjoint(const details::Box& a, const details::Box& b) {
    return a.min.x > b.max.x || b.min.x > a.max.x || a.min.y > b.max.y || b.min.y > a.max.y ||
           a.min.z > b.max.z || b.min.z > a.max.z;
}

/// All hits below two nodes in traversal order.
inline void CollectPlainHits(const details::CollisionBody& first,
                             const details::AABBHierarchyNode& a,
                             const details::CollisionBody& second,
                             const details::AABBHierarchyNode& b,
                             std::vector<TriangleDataPair>& hits) {
    const MATRIX& to_a = first.CurrentMatrix();
    const MATRIX& to_b = second.CurrentMatrix();
    if (PlainDisjoint(Place(to_a, a.LocalBox()), Place(to_b, b.LocalBox()))) return;
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
