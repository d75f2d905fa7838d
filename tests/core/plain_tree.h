#pragma once

#include "core/box.h"
#include "core/triangle.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace tarn::test {

inline std::vector<const details::Triangle*> PointersTo(const std::vector<details::Triangle>& triangles) {
    std::vector<const details::Triangle*> pointers;
    pointers.reserve(triangles.size());
    for (const details::Triangle& triangle : triangles) pointers.push_back(&triangle);
    return pointers;
}

/// The hierarchy's rules told once more, without any thought of speed: lists, recursion, no parallel work.
/// What the library builds must equal this to the last bit.
struct PlainNode {
    details::Box box{};
    std::vector<details::Triangle> triangles;  ///< of a leaf
    std::unique_ptr<PlainNode> first;
    std::unique_ptr<PlainNode> second;

    bool IsLeaf() const { return !first; }
};

inline double CentroidOnAxis(const details::Triangle& t, int axis) {
    return (Vertex0(t)[axis] + Vertex1(t)[axis] + Vertex2(t)[axis]) * 0.3333333333333333;
}

inline void MoveFromBack(std::vector<details::Triangle>& from,
                         std::vector<details::Triangle>& to,
                         std::size_t most) {
    const auto count = static_cast<std::ptrdiff_t>(std::min(most, from.size()));
    to.assign(from.rbegin(), from.rbegin() + count);
    from.erase(from.end() - count, from.end());
}

inline std::unique_ptr<PlainNode> BuildPlainTree(const std::vector<details::Triangle>& triangles,
                                                 std::size_t leaf_number) {
    auto node = std::make_unique<PlainNode>();
    auto& [min, max, extent_sum] = node->box = details::TriangleBox(triangles[0]);
    for (const details::Triangle& triangle : triangles) {
        const details::Box box = details::TriangleBox(triangle);
        if (box.min.x < min.x) min.x = box.min.x;
        if (box.min.y < min.y) min.y = box.min.y;
        if (box.min.z < min.z) min.z = box.min.z;
        if (box.max.x > max.x) max.x = box.max.x;
        if (box.max.y > max.y) max.y = box.max.y;
        if (box.max.z > max.z) max.z = box.max.z;
    }
    const details::Vector3 d = max - min;
    extent_sum = d.x + d.y + d.z;
    if (triangles.size() <= leaf_number) {
        node->triangles = triangles;
        return node;
    }
    const int axis = d.x >= d.y && d.x >= d.z ? 0 : d.y >= d.z ? 1 : 2;
    double sum = CentroidOnAxis(triangles[0], axis);
    for (std::size_t i = 1; i < triangles.size(); ++i) sum += CentroidOnAxis(triangles[i], axis);
    const double mean = sum / static_cast<double>(triangles.size());
    std::vector<details::Triangle> upper;
    std::vector<details::Triangle> lower;
    for (const details::Triangle& triangle : triangles)
        (CentroidOnAxis(triangle, axis) > mean ? upper : lower).push_back(triangle);
    if (upper.empty()) MoveFromBack(lower, upper, leaf_number);
    if (lower.empty()) MoveFromBack(upper, lower, leaf_number);
    node->first = BuildPlainTree(upper, leaf_number);
    node->second = BuildPlainTree(lower, leaf_number);
    return node;
}

}  // namespace tarn::test
