#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "detect/leaf_test.cpp"
#include <hwy/foreach_target.h>
// The line above includes this file once for each set of instructions, so it has to come first.
#include "core/plane.h"
#include "core/triangle_intersection.h"
#include "detect/leaf_test.h"
#include "detect/triangle_separation.h"

#include <hwy/highway.h>

#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace tarn::details::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
using Lanes = hn::CappedTag<double, TriangleGroup::kLanes>;
using V = hn::Vec<Lanes>;

/// The triangles of a group that do not lie on one side of the plane: a bit for each. This is the first step
/// of `TrianglesIntersect`, with the very same roundings (so nothing is fused).
HWY_INLINE unsigned Straddling(const Plane& plane, const TriangleGroup& group) {
    const Lanes d;
    const V x = hn::Set(d, plane.normal.x);
    const V y = hn::Set(d, plane.normal.y);
    const V z = hn::Set(d, plane.normal.z);
    const V offset = hn::Set(d, plane.d);
    const V on_plane = hn::Set(d, kOnPlaneProduct);
    const V zero = hn::Zero(d);
    unsigned straddling = 0;
    for (std::size_t lane = 0; lane < TriangleGroup::kLanes; lane += hn::Lanes(d)) {
        const auto value = [&](std::size_t vertex) HWY_ATTR {
            const auto load = [&](std::size_t axis) HWY_ATTR {
                return hn::Load(d, group.coordinate[3 * vertex + axis] + lane);
            };
            return hn::Add(hn::Add(hn::Add(hn::Mul(x, load(0)), hn::Mul(y, load(1))), hn::Mul(z, load(2))),
                           offset);
        };
        const V d0 = value(0);
        const V d0d1 = hn::Mul(d0, value(1));
        const V d0d2 = hn::Mul(d0, value(2));
        const auto on = hn::And(hn::Lt(hn::Abs(d0d1), on_plane), hn::Lt(hn::Abs(d0d2), on_plane));
        const auto beside = hn::And(hn::Gt(d0d1, zero), hn::Gt(d0d2, zero));
        std::uint8_t bits[8] = {};
        hn::StoreMaskBits(d, hn::Not(hn::Or(on, beside)), bits);
        straddling |= static_cast<unsigned>(bits[0]) << lane;
    }
    return straddling;
}

/// The first hit of the first leaf with the second one, which stands in groups as well.
TriangleHit FirstHitHere(std::span<const Triangle> first_leaf,
                         std::span<const Triangle> second_leaf,
                         const TriangleGroup* groups) {
    for (const Triangle& first : first_leaf) {
        const Plane plane = PlaneOf(first);
        for (std::size_t begin = 0; begin < second_leaf.size(); begin += TriangleGroup::kLanes) {
            unsigned straddling = Straddling(plane, groups[begin / TriangleGroup::kLanes]);
            for (std::size_t j = begin; straddling != 0; ++j, straddling >>= 1U) {
                if ((straddling & 1U) == 0 || j >= second_leaf.size()) continue;
                const Triangle& second = second_leaf[j];
                if (TrianglesIntersect(second, PlaneOf(second), first, plane) &&
                    !AreShownApart(first, second))
                    return {&first, &second};
            }
        }
    }
    return {};
}

}  // namespace
}  // namespace tarn::details::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarn::details {

HWY_EXPORT(FirstHitHere);

namespace {

std::size_t GroupCount(std::size_t triangle_count) {
    return (triangle_count + TriangleGroup::kLanes - 1) / TriangleGroup::kLanes;
}

/// The lanes behind the last triangle repeat it.
void Group(std::span<const Triangle> leaf, TriangleGroup* groups) {
    for (std::size_t i = 0; i < GroupCount(leaf.size()) * TriangleGroup::kLanes; ++i) {
        const Triangle& t = i < leaf.size() ? leaf[i] : leaf.back();
        auto& lanes = groups[i / TriangleGroup::kLanes].coordinate;
        const double coordinates[9] = {t.v0x, t.v0y, t.v0z, t.v1x, t.v1y, t.v1z, t.v2x, t.v2y, t.v2z};
        for (std::size_t k = 0; k < 9; ++k) lanes[k][i % TriangleGroup::kLanes] = coordinates[k];
    }
}

}  // namespace

// The inline groups are left uninitialised: what is read has been written.
LeafTest::LeafTest(std::size_t most_triangles)
    : most_groups_(GroupCount(most_triangles)) {}  // NOLINT: see above

TriangleGroup* LeafTest::Room() {
    if (most_groups_ <= kInlineGroups) return inline_groups_.data();
    if (!heap_groups_) heap_groups_ = std::make_unique_for_overwrite<TriangleGroup[]>(most_groups_);
    return heap_groups_.get();
}

TriangleHit LeafTest::FindFirstHit(std::span<const Triangle> first_leaf,
                                   std::span<const Triangle> second_leaf) {
    TriangleGroup* const groups = Room();
    Group(second_leaf, groups);
    return HWY_DYNAMIC_DISPATCH(FirstHitHere)(first_leaf, second_leaf, groups);
}

}  // namespace tarn::details
#endif
