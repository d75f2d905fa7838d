#include "core/obb_hierarchy.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "core/narrow_triangle.h"
#include "core/oriented_box.h"
#include "core/parallel.h"
#include "core/surface_area_split.h"
#include "core/triangle.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>

namespace tarn::details {

namespace {

constexpr std::size_t kTriangleChunk = 4096;
/// Nodes that a task sets up: some microseconds each.
constexpr std::size_t kNodeChunk = 16;
/// Beyond, distances and their squares leave single precision.
constexpr double kLargestCoordinate = 1e15;
/// The half edge of a lane that is out of use.
constexpr float kNowhere = -1e30F;

/// A run of triangles, by positions, how it is split, and what a node says of it.
struct Run {
    std::uint32_t begin;
    std::uint32_t end;
    std::uint32_t split;
    std::uint32_t child = 0;

    bool IsShort() const { return split == SurfaceAreaSplit::kNone; }
};

/// The runs below a node: both halves of one, the largest of which is split until there are eight or only
/// short ones are left.
class Members {
public:
    /// A single one.
    explicit Members(const Run& run) : runs_{run}, count_(1) {}

    static Members Below(const Run& run, std::span<const SurfaceAreaSplit> splits) {
        Members members(run);
        while (members.count_ < OBBNode::kLanes && members.SplitLargest(splits)) {
        }
        return members;
    }

    std::span<const Run> All() const { return {runs_.data(), count_}; }
    std::span<Run> All() { return {runs_.data(), count_}; }

private:
    bool SplitLargest(std::span<const SurfaceAreaSplit> splits) {
        std::size_t largest = count_;
        for (std::size_t i = 0; i < count_; ++i) {
            if (runs_[i].IsShort()) continue;
            if (largest == count_ ||
                splits[runs_[i].split].half_area > splits[runs_[largest].split].half_area)
                largest = i;
        }
        if (largest == count_) return false;
        const Run run = runs_[largest];
        const SurfaceAreaSplit& split = splits[run.split];
        runs_[largest] = {run.begin, run.split, split.first};
        runs_[count_++] = {run.split, run.end, split.second};
        return true;
    }

    std::array<Run, OBBNode::kLanes> runs_{};
    std::size_t count_;
};

/// The triangles relative to the origin. False where one is out of range.
bool Narrow(std::span<const Triangle> triangles, const Vector3& origin, std::span<NarrowTriangle> narrow) {
    std::atomic<bool> is_in_range = true;
    ParallelFor(triangles.size(), kTriangleChunk, [&](std::size_t begin, std::size_t end) {
        bool chunk_is_in_range = true;
        for (std::size_t i = begin; i < end; ++i) {
            const Vector3 vertices[3] = {Vertex0(triangles[i]) - origin, Vertex1(triangles[i]) - origin,
                                         Vertex2(triangles[i]) - origin};
            for (int v = 0; v < 3; ++v) {
                for (int k = 0; k < 3; ++k) {
                    narrow[i].vertex[v][k] = static_cast<float>(vertices[v][k]);
                    // Written such that NaN fails.
                    chunk_is_in_range &= std::abs(vertices[v][k]) <= kLargestCoordinate;
                }
                narrow[i].vertex[v][3] = 0.0F;
            }
            narrow[i].SetIndex(static_cast<std::uint32_t>(i));
        }
        if (!chunk_is_in_range) is_in_range.store(false, std::memory_order_relaxed);
    });
    return is_in_range.load(std::memory_order_relaxed);
}

/// For each triangle the index of its leaf.
std::vector<std::uint32_t> LeafOfEach(std::span<const AABBHierarchyNode> nodes, std::size_t triangle_count) {
    std::vector<std::uint32_t> leaf_of_each;
    leaf_of_each.reserve(triangle_count);
    // The leaves stand in the order of their triangles.
    for (std::size_t i = 0; i < nodes.size(); ++i)
        leaf_of_each.insert(leaf_of_each.end(), nodes[i].LocalTriangles().size(),
                            static_cast<std::uint32_t>(i));
    return leaf_of_each;
}

void SetBox(const OrientedBox& box, std::size_t lane, OBBNode& node) {
    for (int k = 0; k < 3; ++k) {
        for (int j = 0; j < 3; ++j) node.axis[j][k][lane] = box.axis[j][k];
        node.centre[k][lane] = box.centre[k];
        node.half[k][lane] = box.half[k];
    }
}

void SetNowhere(std::size_t lane, OBBNode& node) {
    SetBox({{}, {}, {kNowhere, kNowhere, kNowhere}}, lane, node);
    node.child[lane] = 0;
}

void SetTriangles(std::span<const NarrowTriangle> triangles,
                  const std::vector<std::uint32_t>& leaf_of_each,
                  OBBLeaf& leaf) {
    for (std::size_t lane = 0; lane < OBBLeaf::kLanes; ++lane) {
        const NarrowTriangle& triangle = triangles[std::min(lane, triangles.size() - 1)];
        for (int v = 0; v < 3; ++v) {
            for (int k = 0; k < 3; ++k) leaf.vertex[v][k][lane] = triangle.vertex[v][k];
        }
        leaf.triangle[lane] = triangle.Index();
        leaf.binary_leaf[lane] = leaf_of_each[triangle.Index()];
    }
}

double LongestEdgeOf(std::span<const NarrowTriangle> triangles) {
    float longest_squared = 0.0F;
    for (const NarrowTriangle& triangle : triangles) {
        for (int v = 0; v < 3; ++v) {
            float squared = 0.0F;
            for (int k = 0; k < 3; ++k) {
                const float difference = triangle.vertex[(v + 1) % 3][k] - triangle.vertex[v][k];
                squared += difference * difference;
            }
            longest_squared = std::max(longest_squared, squared);
        }
    }
    return std::sqrt(static_cast<double>(longest_squared));
}

}  // namespace

std::optional<OBBHierarchy> OBBHierarchy::Build(std::span<const AABBHierarchyNode> nodes,
                                                std::span<const Triangle> triangles) {
    // Four times the number of a leaf, and a bit, fit into 32.
    if (triangles.size() >= (std::size_t{1} << 29)) return std::nullopt;
    const Box root = nodes[0].LocalBox();
    const auto count = static_cast<std::uint32_t>(triangles.size());
    OBBHierarchy tree;
    tree.origin_ = 0.5 * (root.min + root.max);
    const auto narrow = std::make_unique_for_overwrite<NarrowTriangle[]>(count);
    if (!Narrow(triangles, tree.origin_, {narrow.get(), count})) return std::nullopt;
    tree.longest_edge_ = LongestEdgeOf({narrow.get(), count});
    const auto splits = std::make_unique_for_overwrite<SurfaceAreaSplit[]>(count);
    const std::span<const SurfaceAreaSplit> all_splits{splits.get(), count};
    const std::uint32_t root_split =
        SplitBySurfaceArea(nodes[0], {narrow.get(), count}, OBBLeaf::kLanes, {splits.get(), count});

    // Children join at the end, so the loop comes to them in their turn.
    std::vector<Members> members{Members({0, count, root_split})};
    std::uint32_t leaf_count = 0;
    for (std::size_t parent = 0; parent < members.size(); ++parent) {
        Members of_parent = members[parent];
        for (Run& run : of_parent.All()) {
            if (run.IsShort()) {
                run.child = kLeafBit | (leaf_count++ * OBBLeaf::kLanes + run.end - run.begin - 1);
            } else {
                run.child = static_cast<std::uint32_t>(members.size());
                members.push_back(Members::Below(run, all_splits));
            }
        }
        members[parent] = of_parent;
    }

    tree.nodes_.resize(members.size());
    tree.leaves_.resize(leaf_count);
    const auto leaf_of_each = LeafOfEach(nodes, count);
    ParallelFor(members.size(), kNodeChunk, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            std::size_t lane = 0;
            for (const Run& run : std::as_const(members[i]).All()) {
                const std::span<const NarrowTriangle> below{narrow.get() + run.begin, run.end - run.begin};
                SetBox(FitOrientedBox(below), lane, tree.nodes_[i]);
                tree.nodes_[i].child[lane++] = run.child;
                if (run.IsShort())
                    SetTriangles(below, leaf_of_each, tree.leaves_[run.child % kLeafBit / OBBLeaf::kLanes]);
            }
            for (; lane < OBBNode::kLanes; ++lane) SetNowhere(lane, tree.nodes_[i]);
        }
    });
    return tree;
}

}  // namespace tarn::details
