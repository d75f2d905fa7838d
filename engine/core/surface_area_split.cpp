#include "core/surface_area_split.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "core/float4.h"
#include "core/parallel.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tarn::details {

namespace {

constexpr int kBins = 8;
/// Runs that are longer are split as the binary tree is: there it makes little difference, and their data do
/// not fit into a processor's cache.
constexpr std::size_t kLongRun = 65'536;
/// Triangles from which on both halves become tasks: some 0.3 ms of work each.
constexpr std::size_t kTaskGrain = 4096;
/// How deep tasks may nest, so that no tree exhausts the stack.
constexpr int kMaxTaskDepth = 24;
/// What its inverse still fits above.
constexpr float kSmallestExtent = 1e-30F;
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// A box in vectors of four, of which the last number means nothing.
struct Bounds {
    Float4 lo = Uniform4(kInfinity);
    Float4 hi = Uniform4(-kInfinity);

    void Grow(const Bounds& by) {
        lo = Min(lo, by.lo);
        hi = Max(hi, by.hi);
    }
};

Bounds BoundsOf(const NarrowTriangle& triangle) {
    const Float4 v0 = Load4(triangle.vertex[0]);
    const Float4 v1 = Load4(triangle.vertex[1]);
    const Float4 v2 = Load4(triangle.vertex[2]);
    return {Min(Min(v0, v1), v2), Max(Max(v0, v1), v2)};
}

/// Twice the centre.
Float4 CentreOf(const Bounds& bounds) {
    return bounds.lo + bounds.hi;
}

float HalfArea(const Bounds& bounds) {
    const Float4 extent = bounds.hi - bounds.lo;
    return extent[0] * extent[1] + extent[1] * extent[2] + extent[2] * extent[0];
}

/// Maps centres to bins, axis by axis.
class Binning {
public:
    explicit Binning(const Bounds& centres) : lo_(centres.lo) {
        const Float4 extent = centres.hi - centres.lo;
        // Along an axis without extent all are in bin 0. A little less than the full width, so that the last
        // bin has an end.
        for (int i = 0; i < 3; ++i)
            scale_[i] = extent[i] > kSmallestExtent ? kBins * (1.0F - 0x1p-20F) / extent[i] : 0.0F;
    }

    int operator()(Float4 centre, int axis) const {
        return static_cast<int>((centre[axis] - lo_[axis]) * scale_[axis]);
    }

private:
    Float4 lo_;
    Float4 scale_ = Uniform4(0.0F);
};

struct Bin {
    Bounds bounds;
    std::uint32_t count = 0;
};

/// The bins below `border` of an axis come first.
struct Choice {
    int axis = -1;
    int border = 0;
};

/// The cheapest border between bins. No axis where all triangles are in one bin.
Choice Cheapest(const Bin (&bins)[3][kBins]) {
    Choice choice;
    float least = kInfinity;
    for (int axis = 0; axis < 3; ++axis) {
        float cost_behind[kBins];
        Bin behind;
        for (int i = kBins - 1; i > 0; --i) {
            behind.bounds.Grow(bins[axis][i].bounds);
            behind.count += bins[axis][i].count;
            cost_behind[i] =
                behind.count == 0 ? kInfinity : HalfArea(behind.bounds) * static_cast<float>(behind.count);
        }
        Bin before;
        for (int border = 1; border < kBins; ++border) {
            before.bounds.Grow(bins[axis][border - 1].bounds);
            before.count += bins[axis][border - 1].count;
            if (before.count == 0) continue;
            const float cost =
                HalfArea(before.bounds) * static_cast<float>(before.count) + cost_behind[border];
            if (cost < least) {
                least = cost;
                choice = {axis, border};
            }
        }
    }
    return choice;
}

class Splitter {
public:
    Splitter(std::span<NarrowTriangle> triangles, std::size_t leaf_size, std::span<SurfaceAreaSplit> splits)
        : triangles_(triangles),
          leaf_size_(leaf_size),
          splits_(splits) {}

    /// Splits the triangles below a node, which begin at a position.
    std::uint32_t SplitAsTree(const AABBHierarchyNode& node, std::size_t begin, std::size_t end, int depth) {
        if (end - begin <= kLongRun || node.IsLeaf() || depth == kMaxTaskDepth)
            return Split(begin, end, depth);
        const std::size_t middle = begin + node.FirstChild()->LocalTrianglesBelow().size();
        SurfaceAreaSplit& split = splits_[middle];
        const Vector3 extent = Extents(node.LocalBox());
        split.half_area = static_cast<float>(extent.x * extent.y + extent.y * extent.z + extent.z * extent.x);
        ParallelInvoke([&] { split.first = SplitAsTree(*node.FirstChild(), begin, middle, depth + 1); },
                       [&] { split.second = SplitAsTree(*node.SecondChild(), middle, end, depth + 1); });
        return static_cast<std::uint32_t>(middle);
    }

private:
    /// Recursion ends for ranges of any coordinates: a split leaves out at least an eighth of an extent, or
    /// half of the triangles.
    std::uint32_t Split(std::size_t begin, std::size_t end, int depth) {
        if (end - begin <= leaf_size_) return SurfaceAreaSplit::kNone;
        Bounds bounds;
        const std::size_t middle = Partition(begin, end, bounds);
        SurfaceAreaSplit& split = splits_[middle];
        split.half_area = HalfArea(bounds);
        const auto split_first = [&] { split.first = Split(begin, middle, depth + 1); };
        const auto split_second = [&] { split.second = Split(middle, end, depth + 1); };
        if (std::min(middle - begin, end - middle) >= kTaskGrain && depth < kMaxTaskDepth) {
            ParallelInvoke(split_first, split_second);
        } else {
            split_first();
            split_second();
        }
        return static_cast<std::uint32_t>(middle);
    }

    /// Reorders the run in two, neither of them empty, and says where the second begins.
    std::size_t Partition(std::size_t begin, std::size_t end, Bounds& bounds) {
        Bounds centres;
        for (std::size_t i = begin; i < end; ++i) {
            const Bounds triangle = BoundsOf(triangles_[i]);
            bounds.Grow(triangle);
            const Float4 centre = CentreOf(triangle);
            centres.Grow({centre, centre});
        }
        const Binning binning(centres);
        Bin bins[3][kBins];
        for (std::size_t i = begin; i < end; ++i) {
            const Bounds triangle = BoundsOf(triangles_[i]);
            const Float4 centre = CentreOf(triangle);
            for (int axis = 0; axis < 3; ++axis) {
                Bin& bin = bins[axis][binning(centre, axis)];
                bin.bounds.Grow(triangle);
                ++bin.count;
            }
        }
        const Choice choice = Cheapest(bins);
        if (choice.axis < 0) return begin + (end - begin) / 2;
        const auto is_before = [&](const NarrowTriangle& triangle) {
            return binning(CentreOf(BoundsOf(triangle)), choice.axis) < choice.border;
        };
        const auto first = triangles_.begin();
        return static_cast<std::size_t>(std::partition(first + static_cast<std::ptrdiff_t>(begin),
                                                       first + static_cast<std::ptrdiff_t>(end), is_before) -
                                        first);
    }

    std::span<NarrowTriangle> triangles_;
    std::size_t leaf_size_;
    std::span<SurfaceAreaSplit> splits_;
};

}  // namespace

std::uint32_t SplitBySurfaceArea(const AABBHierarchyNode& root,
                                 std::span<NarrowTriangle> triangles,
                                 std::size_t leaf_size,
                                 std::span<SurfaceAreaSplit> splits) {
    return Splitter(triangles, leaf_size, splits).SplitAsTree(root, 0, triangles.size(), 0);
}

}  // namespace tarn::details
