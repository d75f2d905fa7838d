#pragma once

#include "core/vector3.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tarn::details {

class AABBHierarchyNode;
struct Triangle;

/// Up to eight oriented boxes side by side, in single precision, as wide instructions want them.
struct alignas(64) OBBNode {
    static constexpr std::uint32_t kLanes = 8;

    /// Component k of box edge direction j: unit vectors, up to rounding, at right angles.
    float axis[3][3][kLanes];
    /// Relative to the tree's origin, axis by axis.
    float centre[3][kLanes];
    /// Half the edge lengths. Lanes out of use have no axes and negative edges: they are far from everything.
    float half[3][kLanes];
    /// What lies below each box: see `OBBHierarchy`.
    std::uint32_t child[kLanes];
};
static_assert(sizeof(OBBNode) == 512, "a node is eight cache lines");

/// Up to four triangles side by side: what lies below a box that is not divided any further.
struct alignas(16) OBBLeaf {
    static constexpr std::uint32_t kLanes = 4;

    /// Coordinate k of vertex i, relative to the tree's origin, rounded. Lanes out of use repeat the last
    /// triangle.
    float vertex[3][3][kLanes];
    /// The triangle's index in the order of the binary tree's leaves.
    std::uint32_t triangle[kLanes];
    /// The index, among the nodes of the binary tree, of the leaf that holds it.
    std::uint32_t binary_leaf[kLanes];
};

/// One box of a node: eight times the node's index, plus the lane.
using OBBItem = std::uint32_t;

/// A tree of oriented boxes over the triangles of an `AABBHierarchy`, to find out fast which of them are worth
/// a closer look. It decides nothing, so it may divide the triangles as suits it best: by the surface area
/// heuristic (I. Wald, "On fast construction of SAH-based bounding volume hierarchies", 2007), eight boxes to
/// a node, each turned as its triangles lie.
///
/// Node 0 holds one box, that of the root. A child is either the index of a node or, with the leaf bit set,
/// four times the index of an `OBBLeaf` plus the number of its triangles less one. Boxes contain their
/// triangles up to roundings of single precision (see `RelativeFrame`).
class OBBHierarchy {
public:
    static constexpr std::uint32_t kLeafBit = 0x80000000U;
    static constexpr OBBItem kRoot = 0;

    /// Over `triangles`, which stand in the order of the leaves of `nodes`, the nodes of a binary tree that is
    /// not empty, in pre-order. Runs in parallel; the tree is the same whatever the threads. Nothing where a
    /// coordinate leaves single precision, and for 2^29 triangles or more.
    static std::optional<OBBHierarchy> Build(std::span<const AABBHierarchyNode> nodes,
                                             std::span<const Triangle> triangles);

    const OBBNode& NodeOf(OBBItem item) const { return nodes_[item / OBBNode::kLanes]; }
    const OBBNode& operator[](std::uint32_t index) const { return nodes_[index]; }
    /// Of a child with the leaf bit.
    const OBBLeaf& LeafOf(std::uint32_t child) const {
        return leaves_[(child & ~kLeafBit) / OBBLeaf::kLanes];
    }
    static std::uint32_t TriangleCountOf(std::uint32_t child) { return child % OBBLeaf::kLanes + 1; }

    /// The point that all coordinates are relative to, in element coordinates.
    const Vector3& Origin() const { return origin_; }
    /// No edge of a triangle is longer, up to rounding.
    double LongestEdge() const { return longest_edge_; }

private:
    OBBHierarchy() = default;

    Vector3 origin_;
    double longest_edge_ = 0.0;
    std::vector<OBBNode> nodes_;
    std::vector<OBBLeaf> leaves_;
};

}  // namespace tarn::details
