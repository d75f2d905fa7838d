#pragma once

#include "core/collision_body.h"
#include "core/plane.h"
#include "core/triangle_intersection.h"

#include <optional>
#include <span>
#include <stack>
#include <vector>

namespace tarn::test {

/// The interference rules told once more without any thought of speed: every world box and triangle is
/// computed from the placement when it is looked at, on one thread, and all hits are collected.
struct PlainHit {
    details::Triangle first;
    details::Triangle second;
};

inline std::vector<details::Triangle> PlainWorldTriangles(const details::AABBHierarchyNode& node,
                                                          const MATRIX& m) {
    const auto place = [&m](double& x, double& y, double& z) {
        const double px = x;
        const double py = y;
        const double pz = z;
        x = m[0] * px + m[1] * py + m[2] * pz + m[3];
        y = m[4] * px + m[5] * py + m[6] * pz + m[7];
        z = m[8] * px + m[9] * py + m[10] * pz + m[11];
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

inline bool PlainDisjoint(const details::Box& a, const details::Box& b) {
    return a.min.x > b.max.x || b.min.x > a.max.x || a.min.y > b.max.y || b.min.y > a.max.y ||
           a.min.z > b.max.z || b.min.z > a.max.z;
}

inline bool PlainTrianglesIntersect(const details::Triangle& first, const details::Triangle& second) {
    return details::TrianglesIntersect(second, details::PlaneOf(second), first, details::PlaneOf(first));
}

/// All hits of two bodies in traversal order.
inline std::vector<PlainHit> PlainHits(const details::CollisionBody& first,
                                       const details::CollisionBody& second) {
    struct NodePair {
        const details::AABBHierarchyNode* first;
        const details::AABBHierarchyNode* second;
    };
    std::vector<PlainHit> hits;
    const details::AABBHierarchyNode& first_root = first.Hierarchy()->Root();
    const details::AABBHierarchyNode& second_root = second.Hierarchy()->Root();
    if (first_root.IsEmpty() || second_root.IsEmpty()) return hits;
    std::stack<NodePair> stack;
    stack.push({&first_root, &second_root});
    while (!stack.empty()) {
        const auto [a, b] = stack.top();
        stack.pop();
        if (PlainDisjoint(Place(first.CurrentMatrix(), a->LocalBox()),
                          Place(second.CurrentMatrix(), b->LocalBox()))) {
            continue;
        }
        if (a->IsLeaf() && b->IsLeaf()) {
            for (const auto& i : PlainWorldTriangles(*a, first.CurrentMatrix())) {
                for (const auto& j : PlainWorldTriangles(*b, second.CurrentMatrix())) {
                    if (PlainTrianglesIntersect(i, j)) hits.push_back({i, j});
                }
            }
        } else if (b->IsLeaf() || (!a->IsLeaf() && a->LocalBox().extent_sum >= b->LocalBox().extent_sum)) {
            stack.push({a->SecondChild(), b});
            stack.push({a->FirstChild(), b});
        } else {
            stack.push({a, b->SecondChild()});
            stack.push({a, b->FirstChild()});
        }
    }
    return hits;
}

/// Whether any two triangles intersect, boxes or not.
inline bool BruteForceInterferes(const details::CollisionBody& first, const details::CollisionBody& second) {
    std::vector<details::Triangle> second_triangles;
    for (const auto& node : second.Hierarchy()->Nodes()) {
        for (const auto& t : PlainWorldTriangles(node, second.CurrentMatrix())) second_triangles.push_back(t);
    }
    for (const auto& node : first.Hierarchy()->Nodes()) {
        for (const auto& i : PlainWorldTriangles(node, first.CurrentMatrix())) {
            for (const auto& j : second_triangles) {
                if (PlainTrianglesIntersect(i, j)) return true;
            }
        }
    }
    return false;
}

}  // namespace tarn::test
