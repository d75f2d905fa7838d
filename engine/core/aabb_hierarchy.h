#pragma once

#include "core/aabb_hierarchy_visitor.h"
#include "core/box.h"
#include "core/obb_hierarchy.h"
#include "core/triangle.h"

#include "tarn/matrix.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tarn::details {

class AABBHierarchy;
struct BuiltNode;
struct BuiltTree;

/// Depth along first children, triangles below a node, and triangles of the node itself.
struct NodeStatistics {
    std::uint64_t depth;
    std::uint64_t total_triangles;
    std::uint64_t own_triangles;
};

/// One node of an `AABBHierarchy`: a leaf with triangles or an inner node with two children.
///
/// The nodes of a tree stand in pre-order in one block: the first child is the next node, and a subtree is a
/// contiguous run. What a descent reads lies in the first cache line, what a refresh reads in the second.
class alignas(64) AABBHierarchyNode {
public:
    bool IsLeaf() const { return (link_ & kLeafBit) != 0; }
    /// True for the only node of a tree without triangles. Its box overlaps nothing, under any placement.
    bool IsEmpty() const { return IsLeaf() && triangle_count_ == 0; }

    /// Children of inner nodes.
    const AABBHierarchyNode* FirstChild() const { return this + 1; }
    const AABBHierarchyNode* SecondChild() const { return this + link_; }

    /// The box of the node's triangles in element coordinates, flat triangles widened.
    Box LocalBox() const { return {local_min_, local_max_, world_box_.extent_sum}; }
    /// The moved local box, refreshed if stale. Its extent sum stays that of the local box. Safe from any
    /// thread.
    const Box& WorldBox() const;
    /// The triangles of a leaf in element coordinates; none for inner nodes.
    std::span<const Triangle> LocalTriangles() const;
    /// The triangles of all leaves below, in their order, in element coordinates.
    std::span<const Triangle> LocalTrianglesBelow() const;
    /// Those of a leaf in world coordinates, in the same order, refreshed if stale. Safe from any thread.
    std::span<const Triangle> WorldTriangles() const;

    /// The extent sum of the local box: it chooses which node a descent splits, whatever the placement.
    double ExtentSum() const { return world_box_.extent_sum; }
    NodeStatistics Statistics() const;
    /// Hands every node below this one to the visitor in pre-order; nothing for a leaf.
    void Accept(AABBHierarchyNodeVisitor& visitor) const;

private:
    friend class AABBHierarchy;

    static constexpr std::uint32_t kLeafBit = 0x80000000U;

    const AABBHierarchyNode* LastOfSubtree() const;
    const AABBHierarchyNode* FirstLeaf() const;
    std::uint32_t FirstTriangle() const { return link_ & ~kLeafBit; }

    mutable Box world_box_{};
    /// The second child's distance from this node, or the leaf bit and the index of the first triangle.
    std::uint32_t link_ = 0;
    /// The tree's generation that the world box belongs to. See `AABBHierarchy`.
    mutable std::atomic<std::uint32_t> box_generation_{0};

    Vector3 local_min_{};
    Vector3 local_max_{};
    const AABBHierarchy* tree_ = nullptr;
    mutable std::atomic<std::uint32_t> triangles_generation_{0};
    std::uint16_t triangle_count_ = 0;
};
static_assert(sizeof(AABBHierarchyNode) == 128, "a node is two cache lines");

/// A binary tree of axis-aligned boxes over copies of triangles, built once in element coordinates. Moving it
/// marks it stale as a whole; a node's world box and world triangles are brought up to date when somebody
/// asks.
///
/// Staleness is a generation number: the tree counts its moves, and a node is up to date when it carries the
/// tree's number. So a move costs the same whatever the size of the tree. A refresh happens once per node and
/// move: a thread claims the stale node, writes, and publishes with a release store; a thread that finds it
/// claimed waits for that store (the arithmetic between cannot fail). Asking for an up-to-date node is one
/// acquire load.
///
/// Thread-safety: `WorldBox` and `WorldTriangles` from any thread, not beside `MarkStale` or a change of the
/// placement.
class AABBHierarchy {
public:
    /// Builds the tree, in parallel. The triangles, in element coordinates, are copied. `leaf_number` is the
    /// most triangles in a leaf, at least 1. `placement`, not owned, must outlive the tree. Throws
    /// `std::length_error` for 2^30 triangles or more.
    AABBHierarchy(const std::vector<const Triangle*>& triangles,
                  std::uint16_t leaf_number,
                  const MATRIX* placement);
    AABBHierarchy(const AABBHierarchy&) = delete;
    AABBHierarchy& operator=(const AABBHierarchy&) = delete;

    const AABBHierarchyNode& Root() const { return nodes_[0]; }
    /// All nodes in pre-order.
    std::span<const AABBHierarchyNode> Nodes() const { return {nodes_.get(), node_count_}; }
    std::uint16_t LeafNumber() const { return leaf_number_; }
    const MATRIX& Placement() const { return *placement_; }
    /// The same triangles in single precision, for fast filters. Null where they do not fit into it, and where
    /// there are none.
    const OBBHierarchy* Filter() const { return filter_ ? &*filter_ : nullptr; }
    /// All triangles in element coordinates, leaf by leaf.
    std::span<const Triangle> LocalTriangles() const { return {local_triangles_.get(), triangle_count_}; }

    const Box& WorldBox(const AABBHierarchyNode& node) const {
        if (node.box_generation_.load(std::memory_order_acquire) != generation_) RefreshWorldBox(node);
        return node.world_box_;
    }
    std::span<const Triangle> LocalTriangles(const AABBHierarchyNode& node) const {
        return {local_triangles_.get() + node.FirstTriangle(), node.triangle_count_};
    }
    std::span<const Triangle> LocalTrianglesBelow(const AABBHierarchyNode& node) const;
    std::span<const Triangle> WorldTriangles(const AABBHierarchyNode& node) const {
        if (node.triangles_generation_.load(std::memory_order_acquire) != generation_)
            RefreshWorldTriangles(node);
        return {world_triangles_.get() + node.FirstTriangle(), node.triangle_count_};
    }

    /// Declares the world data of all nodes out of date: the placement has changed.
    void MarkStale();

    /// Checks the structure for tests: children inside parents, leaves not too full, triangles partitioned.
    bool IsConsistent() const;

private:
    void CopyNodes(const BuiltTree& built);
    void CopyNode(const BuiltNode& from, AABBHierarchyNode& to) const;
    void RefreshWorldBox(const AABBHierarchyNode& node) const;
    void RefreshWorldTriangles(const AABBHierarchyNode& node) const;

    std::unique_ptr<AABBHierarchyNode[]> nodes_;
    std::size_t node_count_ = 0;
    std::size_t triangle_count_ = 0;
    std::unique_ptr<Triangle[]> local_triangles_;
    std::unique_ptr<Triangle[]> world_triangles_;
    std::optional<OBBHierarchy> filter_;
    const MATRIX* placement_;
    std::uint32_t generation_;
    std::uint16_t leaf_number_;
};

inline const Box& AABBHierarchyNode::WorldBox() const {
    return tree_->WorldBox(*this);
}

inline std::span<const Triangle> AABBHierarchyNode::LocalTriangles() const {
    return IsLeaf() ? tree_->LocalTriangles(*this) : std::span<const Triangle>();
}

inline std::span<const Triangle> AABBHierarchyNode::LocalTrianglesBelow() const {
    return tree_->LocalTrianglesBelow(*this);
}

inline std::span<const Triangle> AABBHierarchyNode::WorldTriangles() const {
    return IsLeaf() ? tree_->WorldTriangles(*this) : std::span<const Triangle>();
}

}  // namespace tarn::details
