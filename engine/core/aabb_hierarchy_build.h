#pragma once

#include "core/box.h"
#include "core/triangle.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace tarn::details {

/// A node of a tree that is being built.
struct BuiltNode {
    Box local_box;
    std::uint32_t second_child_offset;  ///< distance to the second child in pre-order; 0 for leaves
    std::uint32_t first_triangle;       ///< of a leaf, as a position in `BuiltTree::order`
    std::uint32_t triangle_count;       ///< of a leaf; 0 for inner nodes
};

struct BuiltTree {
    /// Nodes that follow one another in the block as they do in pre-order.
    struct Run {
        std::size_t first_node;
        std::size_t node_count;
    };

    std::size_t node_count = 0;
    std::vector<Run> runs;                   ///< all nodes in pre-order
    std::unique_ptr<BuiltNode[]> nodes;      ///< the block that they stand in, with gaps
    std::unique_ptr<std::uint32_t[]> order;  ///< the triangles, as input indices, in the order of the leaves
};

/// Builds a tree over at least one triangle by these rules, which fix the tree to the last bit:
///  (1) A node's box is the box of its first triangle grown by the others in order, each widened where it is
///      flat.
///  (2) Up to `leaf_number` triangles make a leaf, in their order.
///  (3) Otherwise the node is split along the longest extent of its box (ties: x, then y) at the mean of the
///      centroids on that axis, one running sum in order divided by the count. Triangles strictly above the
///      mean go, in order, to the first child, the others to the second.
///  (4) If nothing lies above, up to `leaf_number` triangles are taken from the back of the lower list, the
///      last one first, and make the first child; if nothing lies below (the mean can round below equal
///      centroids), likewise from the back of the upper list for the second child.
/// The work is done in parallel where it pays; no step recurses with the depth of the tree, and runs of rule
/// (4), which coinciding triangles cause, take time in proportion to their length.
BuiltTree BuildTree(const std::vector<const Triangle*>& triangles, std::uint16_t leaf_number);

}  // namespace tarn::details
