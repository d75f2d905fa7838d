#pragma once

#include "core/box.h"
#include "core/triangle.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace tarn::test {

/// The hierarchy's rules told once more, without any thought of speed: lists, recursion, no parallel work.
/// What the library builds must equal this to the last bit.
struct PlainNode {
    details::Box box{};
    std::vector<details::Triangle> triangles;  ///< of a leaf
    std::unique_ptr<PlainNode> first;
    std::unique_ptr<PlainNode> second;

    bool IsLeaf() const { return !first; }
};

inline double CoordinateOf(const details::Vector3& v, int axis) {
    return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}

inline double CentroidOnAxis(const details::Triangle& t, int axis) {
    return (CoordinateOf(Vertex0(t), axis) + CoordinateOf(Vertex1(t), axis) +
            CoordinateOf(Vertex2(t), axis)) *
           0.3333333333333333;
}

inline void MoveFromBack(std::vector<details::Triangle>& from,
                         std::vector<details::Triangle>& to,
                         std::size_t most) {
    const std::size_t count = std::min(most, from.size());
    for (std::size_t i = 0; i < count; ++i) {
        to.push_back(from.back());
        from.pop_back();
    }
}

inline std::unique_ptr<PlainNode> BuildPlainTree(const std::vector<details::Triangle>& triangles,
                                                 std::size_t leaf_number) {
    auto node = std::make_unique<PlainNode>();
    node->box = details::TriangleBox(triangles[0]);
    for (const details::Triangle& triangle : triangles) {
        const details::Box box = details::TriangleBox(triangle);
        for (auto [own, other] :
             {std::pair{&node->box.min.x, box.min.x}, std::pair{&node->box.min.y, box.min.y},
              std::pair{&node->box.min.z, box.min.z}}) {
            if (other < *own) *own = other;
        }
        for (auto [own, other] :
             {std::pair{&node->box.max.x, box.max.x}, std::pair{&node->box.max.y, box.max.y},
              std::pair{&node->box.max.z, box.max.z}}) {
            if (other > *own) *own = other;
        }
    }
    const double dx = node->box.max.x - node->box.min.x;
    const double dy = node->box.max.y - node->box.min.y;
    const double dz = node->box.max.z - node->box.min.z;
    node->box.extent_sum = dx + dy + dz;
    if (triangles.size() <= leaf_number) {
        node->triangles = triangles;
        return node;
    }
    const int axis = dx >= dy && dx >= dz ? 0 : dy >= dz ? 1 : 2;
    double sum = CentroidOnAxis(triangles[0], axis);
    for (std::size_t i = 1; i < triangles.size(); ++i) sum += CentroidOnAxis(triangles[i], axis);
    const double mean = sum / static_cast<double>(triangles.size());
    std::vector<details::Triangle> upper;
    std::vector<details::Triangle> lower;
    for (const details::Triangle& triangle : triangles) {
        (CentroidOnAxis(triangle, axis) > mean ? upper : lower).push_back(triangle);
    }
    if (upper.empty()) MoveFromBack(lower, upper, leaf_number);
    if (lower.empty()) MoveFromBack(upper, lower, leaf_number);
    node->first = BuildPlainTree(upper, leaf_number);
    node->second = BuildPlainTree(lower, leaf_number);
    return node;
}

}  // namespace tarn::test
