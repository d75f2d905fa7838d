#include "core/aabb_hierarchy.h"

#include "core/aabb_hierarchy_build.h"
#include "core/parallel.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace tarn::details {

namespace {

/// Triangles a task copies into the tree's blocks. Copying one takes a few nanoseconds, a task some
/// microseconds.
constexpr std::size_t kCopyChunk = 4096;
/// Runs of nodes that a task copies: one holds a few hundred nodes or more.
constexpr std::size_t kRunChunk = 4;

/// The box of a tree without triangles: beyond everything. `AABBHierarchyNode::IsEmpty` says so where NaN
/// would not.
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Vector3 kEmptyMin{kInfinity, kInfinity, kInfinity};
constexpr Vector3 kEmptyMax{-kInfinity, -kInfinity, -kInfinity};

bool Contains(const Box& outer, const Box& inner) {
    return !(inner.min.x < outer.min.x || inner.min.y < outer.min.y || inner.min.z < outer.min.z ||
             inner.max.x > outer.max.x || inner.max.y > outer.max.y || inner.max.z > outer.max.z);
}

}  // namespace

AABBHierarchy::AABBHierarchy(const std::vector<const Triangle*>& triangles,
                             std::uint16_t leaf_number,
                             const MATRIX* placement)
    : placement_(placement),
      generation_(1),
      leaf_number_(leaf_number) {
    // An inner node per split and a leaf per run of triangles: both indices fit into 31 bits then.
    if (triangles.size() >= (std::size_t{1} << 30)) throw std::length_error("too many triangles in one body");
    if (triangles.empty()) {
        node_count_ = 1;
        nodes_ = std::make_unique<AABBHierarchyNode[]>(1);
        nodes_[0].tree_ = this;
        nodes_[0].link_ = AABBHierarchyNode::kLeafBit;
        nodes_[0].local_min_ = kEmptyMin;
        nodes_[0].local_max_ = kEmptyMax;
        nodes_[0].world_box_ = {kEmptyMin, kEmptyMax, 0.0};
        return;
    }

    const BuiltTree built = BuildTree(triangles, leaf_number);
    node_count_ = built.node_count;
    nodes_ = std::make_unique<AABBHierarchyNode[]>(node_count_);
    CopyNodes(built);
    local_triangles_ = std::make_unique_for_overwrite<Triangle[]>(triangles.size());
    world_triangles_ = std::make_unique_for_overwrite<Triangle[]>(triangles.size());
    ParallelFor(triangles.size(), kCopyChunk, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            const Triangle& triangle = *triangles[built.order[i]];
            local_triangles_[i] = triangle;
            world_triangles_[i] = triangle;
        }
    });
    triangle_count_ = triangles.size();
    filter_ = OBBHierarchy::Build(Nodes(), LocalTriangles());
}

void AABBHierarchy::CopyNodes(const BuiltTree& built) {
    std::vector<std::size_t> first_of_run;
    first_of_run.reserve(built.runs.size());
    std::size_t next = 0;
    for (const BuiltTree::Run& run : built.runs) {
        first_of_run.push_back(next);
        next += run.node_count;
    }
    ParallelFor(built.runs.size(), kRunChunk, [&](std::size_t begin, std::size_t end) {
        for (std::size_t run = begin; run < end; ++run) {
            for (std::size_t i = 0; i < built.runs[run].node_count; ++i) {
                CopyNode(built.nodes[built.runs[run].first_node + i], nodes_[first_of_run[run] + i]);
            }
        }
    });
}

void AABBHierarchy::CopyNode(const BuiltNode& from, AABBHierarchyNode& to) const {
    to.tree_ = this;
    to.local_min_ = from.local_box.min;
    to.local_max_ = from.local_box.max;
    to.world_box_ = from.local_box;
    to.link_ = from.second_child_offset != 0 ? from.second_child_offset
                                             : AABBHierarchyNode::kLeafBit | from.first_triangle;
    to.triangle_count_ = static_cast<std::uint16_t>(from.triangle_count);
}

const AABBHierarchyNode* AABBHierarchyNode::LastOfSubtree() const {
    const AABBHierarchyNode* node = this;
    while (!node->IsLeaf()) node = node->SecondChild();
    return node;
}

const AABBHierarchyNode* AABBHierarchyNode::FirstLeaf() const {
    const AABBHierarchyNode* node = this;
    while (!node->IsLeaf()) node = node->FirstChild();
    return node;
}

NodeStatistics AABBHierarchyNode::Statistics() const {
    // First children follow one another in pre-order.
    return {static_cast<std::uint64_t>(FirstLeaf() - this), LocalTrianglesBelow().size(), triangle_count_};
}

std::span<const Triangle> AABBHierarchy::LocalTrianglesBelow(const AABBHierarchyNode& node) const {
    // They are one run, because the leaves are numbered in pre-order.
    const std::size_t begin = node.FirstLeaf()->FirstTriangle();
    const AABBHierarchyNode* last_leaf = node.LastOfSubtree();
    return {local_triangles_.get() + begin, last_leaf->FirstTriangle() + last_leaf->triangle_count_ - begin};
}

void AABBHierarchyNode::Accept(AABBHierarchyNodeVisitor& visitor) const {
    const AABBHierarchyNode* last = LastOfSubtree();
    for (const AABBHierarchyNode* node = this; node != last;) visitor.Visit(++node);
}

bool AABBHierarchy::IsConsistent() const {
    std::size_t next_triangle = 0;
    for (std::size_t i = 0; i < node_count_; ++i) {
        const AABBHierarchyNode& node = nodes_[i];
        if (node.tree_ != this) return false;
        const Box box = node.LocalBox();
        if (node.IsLeaf()) {
            if (node.FirstTriangle() != next_triangle || node.triangle_count_ > leaf_number_) return false;
            next_triangle += node.triangle_count_;
            const auto inside = [&](const Triangle& t) { return Contains(box, TriangleBox(t)); };
            if (!std::ranges::all_of(LocalTriangles(node), inside)) return false;
        } else {
            if (node.link_ < 2 || i + node.link_ >= node_count_) return false;
            if (!Contains(box, node.FirstChild()->LocalBox())) return false;
            if (!Contains(box, node.SecondChild()->LocalBox())) return false;
            if (node.FirstChild()->LastOfSubtree() + 1 != node.SecondChild()) return false;
        }
    }
    return nodes_[0].LastOfSubtree() == &nodes_[node_count_ - 1];
}

}  // namespace tarn::details
