#pragma once

#include "core/function_ref.h"
#include "core/vector3.h"

#include <cstdint>
#include <span>
#include <vector>

namespace tarn::details {

class AABBHierarchyNode;

/// Up to eight boxes side by side, in single precision, as wide instructions want them. Each comes with a slab:
/// a pair of parallel planes, in the direction in which the triangles below are thin, that holds them all. It
/// does for tilted faces what the box does for those along an axis.
struct alignas(64) WideNode {
    static constexpr std::uint32_t kLanes = 8;

    /// Relative to the centre of the tree's root box, axis by axis.
    float centre[3][kLanes];
    float half[3][kLanes];
    /// A unit vector n, up to rounding, and where n . x lies for the points x of the slab, relative to that
    /// centre as well. All are zero where there is no slab.
    float slab_normal[3][kLanes];
    float slab_centre[kLanes];
    float slab_half[kLanes];
    /// What lies below each box: see `WideHierarchy`.
    std::uint32_t child[kLanes];
    /// The binary node that each box is of, by its index. Of unused lanes, beyond the last index.
    std::uint32_t binary[kLanes];
    /// Lanes in use, from the first on. Everything of the others is zero.
    std::uint32_t count;
};
static_assert(sizeof(WideNode) == 448, "a node is seven cache lines");

/// One box of a wide node: eight times the node's index, plus the lane.
using WideItem = std::uint32_t;

/// The boxes of a binary tree once more, eight children to a node, to find out fast which leaves are worth a
/// closer look. It decides nothing: each box contains the local box that it stands for, and each slab the
/// triangles, up to roundings of double precision, and they are little larger.
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
    const WideNode& operator[](std::uint32_t index) const { return nodes_[index]; }

    /// Hands the normals of all slabs above a leaf, which is given by its index, to `visit`; zero where there
    /// is no slab.
    void VisitSlabNormalsAbove(std::uint32_t leaf, FunctionRef<void(const Vector3& normal)> visit) const;

    /// The point that all boxes are relative to, in element coordinates.
    const Vector3& Origin() const { return origin_; }

private:
    /// Adds a node over the given binary nodes, whose indices count from `first`, without any shapes as yet,
    /// and returns its index.
    std::uint32_t Append(std::span<const AABBHierarchyNode* const> members, const AABBHierarchyNode* first);

    Vector3 origin_;
    std::vector<WideNode> nodes_;
};

}  // namespace tarn::details
