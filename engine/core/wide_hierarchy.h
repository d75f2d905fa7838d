#pragma once

#include "core/vector3.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tarn::details {

class AABBHierarchyNode;

/// Up to four boxes side by side, in single precision, as wide instructions want them.
struct alignas(64) WideNode {
    static constexpr std::uint32_t kLanes = 4;

    /// Relative to the centre of the tree's root box, axis by axis.
    float centre[3][kLanes];
    float half[3][kLanes];
    /// What lies below each box: see `WideHierarchy`.
    std::uint32_t child[kLanes];
    /// Lanes in use, from the first on. The boxes of the others are zero.
    std::uint32_t count;
};
static_assert(sizeof(WideNode) == 128, "a node is two cache lines");

/// One box of a wide node: four times the node's index, plus the lane.
using WideItem = std::uint32_t;

/// The boxes of a binary tree once more, four children to a node and a quarter of the memory, to find out
/// fast which leaves are worth a closer look. It decides nothing: each box contains the local box that it
/// stands for, up to roundings of double precision, and is little larger.
///
/// Node 0 holds one box, that of the root. A child is either the index of a wide node or, with the leaf bit
/// set, the index of a leaf among the nodes of the binary tree.
class WideHierarchy {
public:
    static constexpr std::uint32_t kLeafBit = 0x80000000U;
    static constexpr WideItem kRoot = 0;

    /// `nodes`, in pre-order, are those of a binary tree that is not empty.
    explicit WideHierarchy(std::span<const AABBHierarchyNode> nodes);

    const WideNode& NodeOf(WideItem item) const { return nodes_[item / WideNode::kLanes]; }
    std::uint32_t ChildOf(WideItem item) const { return NodeOf(item).child[item % WideNode::kLanes]; }
    const WideNode& operator[](std::uint32_t index) const { return nodes_[index]; }
    std::size_t size() const { return nodes_.size(); }

    /// The point that all boxes are relative to, in element coordinates.
    const Vector3& Origin() const { return origin_; }

private:
    /// Adds a node over the given binary nodes, whose indices count from `first`, and returns its index. The
    /// children are those indices as yet.
    std::uint32_t Append(std::span<const AABBHierarchyNode* const> members, const AABBHierarchyNode* first);

    Vector3 origin_;
    std::vector<WideNode> nodes_;
};

}  // namespace tarn::details
