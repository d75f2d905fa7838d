#pragma once

#include "core/narrow_triangle.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace tarn::details {

class AABBHierarchyNode;

/// How a run of triangles is split in two. It stands at the position at which its second half begins, so all
/// splits of a list fit into an array of the same length, whatever thread makes them.
struct SurfaceAreaSplit {
    /// Runs that are not split any further.
    static constexpr std::uint32_t kNone = 0;

    /// The splits of both halves, by position.
    std::uint32_t first;
    std::uint32_t second;
    /// Half the surface of the box of the whole run.
    float half_area;
};

/// Orders the triangles such that runs of them are close together, and splits the list over and over, until no
/// run is longer than `leaf_size`: binned, by the surface area heuristic (I. Wald, "On fast construction of
/// SAH-based bounding volume hierarchies", 2007). Returns the split of the whole. Runs in parallel, with the
/// same outcome whatever the threads. No coordinate is above 1e18 by magnitude; there are fewer than 2^31
/// triangles, and as many splits.
///
/// The triangles come in the order of a binary tree's leaves. As long as runs are long, they are split as that
/// tree splits them, which costs nothing: what makes a difference are the short ones.
std::uint32_t SplitBySurfaceArea(const AABBHierarchyNode& root,
                                 std::span<NarrowTriangle> triangles,
                                 std::size_t leaf_size,
                                 std::span<SurfaceAreaSplit> splits);

}  // namespace tarn::details
