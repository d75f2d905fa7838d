#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "detect/wide_step.cpp"
#include <hwy/foreach_target.h>
// The line above includes this file once for each target, so it has to come first.
#include "core/aabb_hierarchy.h"
#include "detect/wide_step.h"

#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace tarn::details::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
/// Up to eight.
using Lanes = hn::CappedTag<float, WideNode::kLanes>;
using V = hn::Vec<Lanes>;

/// Squares and sums of squares round; this much smaller they are lower bounds still.
constexpr float kShrink = 1.0F - 0x1p-20F;

/// One box against those of a node: for each a lower bound of the squared distance, and how far they are apart
/// along the best of the six edge directions, which is negative where they overlap.
struct Look {
    unsigned near;  ///< a bit for each lane that is not farther away than the limit
    alignas(32) float lower[WideNode::kLanes];
    alignas(32) float gap[WideNode::kLanes];
};

HWY_INLINE void LookAtLanes(const WideView& view,
                            const WideNode& single,
                            std::uint32_t single_lane,
                            const WideNode& node,
                            std::size_t from_lane,
                            float limit,
                            Look& look) {
    const Lanes d;
    const auto set = [&](float value) HWY_ATTR { return hn::Set(d, value); };
    const auto& r = view.rotation;
    const auto& s = view.magnitude;
    const float a[3] = {single.half[0][single_lane], single.half[1][single_lane],
                        single.half[2][single_lane]};
    const auto load = [&](const float* lanes) HWY_ATTR { return hn::Load(d, lanes + from_lane); };
    const V h[3] = {load(node.half[0]), load(node.half[1]), load(node.half[2])};
    const V c[3] = {load(node.centre[0]), load(node.centre[1]), load(node.centre[2])};
    const V zero = hn::Zero(d);
    const V margin = set(view.margin);

    V t[3];
    for (int i = 0; i < 3; ++i) {
        const V start = set(view.offset[i] - single.centre[i][single_lane]);
        t[i] = hn::MulAdd(set(r[i][0]), c[0],
                          hn::MulAdd(set(r[i][1]), c[1], hn::MulAdd(set(r[i][2]), c[2], start)));
    }
    V widest_gap = set(-1e30F);
    V lower = zero;
    for (int i = 0; i < 3; ++i) {
        const V radii = hn::MulAdd(set(s[i][0]), h[0],
                                   hn::MulAdd(set(s[i][1]), h[1], hn::MulAdd(set(s[i][2]), h[2], set(a[i]))));
        const V gap = hn::Abs(t[i]) - radii;
        widest_gap = hn::Max(widest_gap, gap);
        const V apart = hn::Max(gap - margin, zero);
        lower = hn::MulAdd(apart, apart, lower);
    }
    V lower_b = zero;
    for (int j = 0; j < 3; ++j) {
        const V along = hn::MulAdd(t[0], set(r[0][j]), hn::MulAdd(t[1], set(r[1][j]), t[2] * set(r[2][j])));
        const V radii = h[j] + set(s[0][j] * a[0] + s[1][j] * a[1] + s[2][j] * a[2]);
        const V gap = hn::Abs(along) - radii;
        widest_gap = hn::Max(widest_gap, gap);
        const V apart = hn::Max(gap - margin, zero);
        lower_b = hn::MulAdd(apart, apart, lower_b);
    }
    lower = hn::Max(lower, lower_b);

    // The slabs: those of the lanes against the one box, then the other way round.
    float q[3];
    for (int j = 0; j < 3; ++j) {
        q[j] = r[0][j] * (single.centre[0][single_lane] - view.offset[0]) +
               r[1][j] * (single.centre[1][single_lane] - view.offset[1]) +
               r[2][j] * (single.centre[2][single_lane] - view.offset[2]);
    }
    const V n[3] = {load(node.slab_normal[0]), load(node.slab_normal[1]), load(node.slab_normal[2])};
    const auto dot = [&](float x, float y, float z) HWY_ATTR {
        return hn::MulAdd(n[0], set(x), hn::MulAdd(n[1], set(y), n[2] * set(z)));
    };
    V slab_radii = load(node.slab_half) + margin;
    for (int i = 0; i < 3; ++i)
        slab_radii = hn::MulAdd(hn::Abs(dot(r[i][0], r[i][1], r[i][2])), set(a[i]), slab_radii);
    V slab_gap = hn::Abs(dot(q[0], q[1], q[2]) - load(node.slab_centre)) - slab_radii;

    const float m[3] = {single.slab_normal[0][single_lane], single.slab_normal[1][single_lane],
                        single.slab_normal[2][single_lane]};
    float turned[3];
    for (int j = 0; j < 3; ++j) turned[j] = m[0] * r[0][j] + m[1] * r[1][j] + m[2] * r[2][j];
    const float start = m[0] * view.offset[0] + m[1] * view.offset[1] + m[2] * view.offset[2] -
                        single.slab_centre[single_lane];
    const V along_m = hn::MulAdd(
        set(turned[0]), c[0], hn::MulAdd(set(turned[1]), c[1], hn::MulAdd(set(turned[2]), c[2], set(start))));
    const V radii_m = hn::MulAdd(set(std::abs(turned[0])), h[0],
                                 hn::MulAdd(set(std::abs(turned[1])), h[1],
                                            hn::MulAdd(set(std::abs(turned[2])), h[2],
                                                       set(single.slab_half[single_lane] + view.margin))));
    slab_gap = hn::Max(hn::Max(slab_gap, hn::Abs(along_m) - radii_m), zero);
    lower = hn::Max(lower, slab_gap * slab_gap) * set(kShrink);
    const V limits = set(limit);
    if (hn::AllTrue(d, lower > limits)) return;
    V best = zero;
    for (int i = 0; i < 3; ++i) {
        const int i1 = (i + 1) % 3;
        const int i2 = (i + 2) % 3;
        for (int j = 0; j < 3; ++j) {
            const int j1 = (j + 1) % 3;
            const int j2 = (j + 2) % 3;
            const V along = hn::MulSub(t[i2], set(r[i1][j]), t[i1] * set(r[i2][j]));
            const V radii = hn::MulAdd(
                h[j1], set(s[i][j2]),
                hn::MulAdd(h[j2], set(s[i][j1]), set(a[i1] * s[i2][j] + a[i2] * s[i1][j] + view.margin)));
            best = hn::Max(best, (hn::Abs(along) - radii) * set(view.inverse_sine[i][j]));
        }
    }
    lower = hn::Max(lower, best * best * set(kShrink));
    hn::Store(lower, d, look.lower + from_lane);
    hn::Store(widest_gap, d, look.gap + from_lane);
    std::uint8_t bits[8] = {};
    hn::StoreMaskBits(d, lower <= limits, bits);
    look.near |= static_cast<unsigned>(bits[0]) << from_lane;
}

HWY_INLINE void LookAt(const WideView& view,
                       const WideNode& single,
                       std::uint32_t single_lane,
                       const WideNode& node,
                       float limit,
                       Look& look) {
    look.near = 0;
    for (std::size_t lane = 0; lane < WideNode::kLanes; lane += hn::Lanes(Lanes()))
        LookAtLanes(view, single, single_lane, node, lane, limit, look);
    look.near &= (1U << node.count) - 1U;
}

/// A smaller limit would leave out too much.
float RoundUp(double limit_squared) {
    constexpr auto kLargest = static_cast<double>(std::numeric_limits<float>::max());
    return static_cast<float>(std::min(limit_squared, kLargest)) * (1.0F + 0x1p-22F);
}

float SizeOf(const WideNode& node, std::uint32_t lane) {
    return node.half[0][lane] + node.half[1][lane] + node.half[2][lane];
}

/// For a heap with the most urgent pair in front.
bool IsLessUrgent(const WidePair& a, const WidePair& b) {
    return a.urgency > b.urgency;
}

WidePair Take(SearchOrder order, std::vector<WidePair>& pending) {
    if (order == SearchOrder::ByNearness) std::pop_heap(pending.begin(), pending.end(), IsLessUrgent);
    const WidePair pair = pending.back();
    pending.pop_back();
    return pair;
}

/// Adds the near lanes of a look.
template <typename MakePair>
HWY_INLINE void Add(const Look& look, SearchOrder order, std::vector<WidePair>& pending, MakePair make_pair) {
    const auto begin = static_cast<std::ptrdiff_t>(pending.size());
    for (std::uint32_t lane = 0; lane < WideNode::kLanes; ++lane) {
        if ((look.near >> lane & 1U) == 0) continue;
        WidePair pair = make_pair(lane);
        pair.lower = look.lower[lane];
        pair.urgency = pair.lower > 0.0F ? pair.lower : look.gap[lane];
        pending.push_back(pair);
        if (order == SearchOrder::ByNearness) {
            std::push_heap(pending.begin(), pending.end(), IsLessUrgent);
            continue;
        }
        // The most urgent one goes last: a handful, sorted as it grows.
        for (auto at = pending.end() - 1; at - pending.begin() > begin && IsLessUrgent(*at, *(at - 1)); --at)
            std::swap(*at, *(at - 1));
    }
}

void WorkOffHere(const WideTask& task, std::vector<WidePair>& pending, std::size_t budget) {
    constexpr std::uint32_t kLanes = WideNode::kLanes;
    const WideHierarchy& first = task.first.Wide();
    const WideHierarchy& second = task.second.Wide();
    Look look;
    for (; !pending.empty() && budget > 0; --budget) {
        const WidePair pair = Take(task.order, pending);
        const float limit = RoundUp(task.limit.Squared());
        if (pair.lower > limit) continue;
        const WideNode& first_node = first.NodeOf(pair.first);
        const WideNode& second_node = second.NodeOf(pair.second);
        const std::uint32_t first_lane = pair.first % kLanes;
        const std::uint32_t second_lane = pair.second % kLanes;
        const std::uint32_t first_child = first_node.child[first_lane];
        const std::uint32_t second_child = second_node.child[second_lane];
        const bool first_is_leaf = (first_child & WideHierarchy::kLeafBit) != 0;
        const bool second_is_leaf = (second_child & WideHierarchy::kLeafBit) != 0;
        if (first_is_leaf && second_is_leaf) {
            task.visit({&task.first.Nodes()[first_child & ~WideHierarchy::kLeafBit],
                        &task.second.Nodes()[second_child & ~WideHierarchy::kLeafBit]});
        } else if (second_is_leaf ||
                   (!first_is_leaf && SizeOf(first_node, first_lane) >= SizeOf(second_node, second_lane))) {
            LookAt(task.from_second, second_node, second_lane, first[first_child], limit, look);
            Add(look, task.order, pending, [&](std::uint32_t lane) {
                return WidePair{first_child * kLanes + lane, pair.second, 0.0F, 0.0F};
            });
        } else {
            LookAt(task.from_first, first_node, first_lane, second[second_child], limit, look);
            Add(look, task.order, pending, [&](std::uint32_t lane) {
                return WidePair{pair.first, second_child * kLanes + lane, 0.0F, 0.0F};
            });
        }
    }
}

}  // namespace
}  // namespace tarn::details::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarn::details {

HWY_EXPORT(WorkOffHere);

void WorkOff(const WideTask& task, std::vector<WidePair>& pending, std::size_t budget) {
    HWY_DYNAMIC_DISPATCH(WorkOffHere)(task, pending, budget);
}

}  // namespace tarn::details
#endif
