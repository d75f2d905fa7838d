#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "detect/filter_step.cpp"
#include <hwy/foreach_target.h>
// The line above includes this file once for each target, so it has to come first.
#include "detect/filter_step.h"
#include "detect/triangle_sieve-inl.h"

#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace tarn::details::HWY_NAMESPACE {
namespace {

/// Up to eight.
using Lanes = hn::CappedTag<float, OBBNode::kLanes>;
using V = hn::Vec<Lanes>;

/// Squares and sums of squares round, and axes are not quite at right angles; this much smaller they are lower
/// bounds still.
constexpr float kShrink = 1.0F - 0x1p-18F;
/// Of an inverse root that is good to seven bits, and of sines of axes that are not quite unit vectors.
constexpr float kRootShrink = 1.0F - 0x1p-6F;
/// Squared sines below this make no direction.
constexpr float kSmallestSineSquared = 1e-3F;

/// One box in the frame of another tree.
struct TurnedBox {
    float axis[3][3];  ///< of its edges
    float centre[3];
    float half[3];
};

/// `view` is that of the tree whose frame the box is turned to.
HWY_INLINE TurnedBox Turn(const OBBNode& node, std::uint32_t lane, const FilterView& view) {
    TurnedBox box;
    const auto& r = view.rotation;
    for (int k = 0; k < 3; ++k) {
        const auto turn = [&](const float(&v)[3][OBBNode::kLanes]) HWY_ATTR {
            return r[k][0] * v[0][lane] + r[k][1] * v[1][lane] + r[k][2] * v[2][lane];
        };
        for (int i = 0; i < 3; ++i) box.axis[i][k] = turn(node.axis[i]);
        box.centre[k] = turn(node.centre) + view.offset[k];
        box.half[k] = node.half[k][lane];
    }
    return box;
}

/// One box against those of a node: for each a lower bound of the squared distance, and how far they are apart
/// along the best of the six edge directions, which is negative where they overlap.
struct Look {
    unsigned near;  ///< a bit for each lane that is worth a closer look
    alignas(32) float lower[OBBNode::kLanes];
    alignas(32) float gap[OBBNode::kLanes];
};

/// All boxes are finite: trees are made of nothing else, and frames are rigid.
template <SearchGoal kGoal>
HWY_INLINE void LookAtLanes(const TurnedBox& single,
                            const OBBNode& node,
                            std::size_t from_lane,
                            float margin,
                            float limit,
                            Look& look) {
    const Lanes d;
    const auto set = [&](float value) HWY_ATTR { return hn::Set(d, value); };
    const auto load = [&](const float* lanes) HWY_ATTR { return hn::Load(d, lanes + from_lane); };
    const auto& a = single.half;
    const V h[3] = {load(node.half[0]), load(node.half[1]), load(node.half[2])};
    const V zero = hn::Zero(d);

    V between[3];
    for (int k = 0; k < 3; ++k) between[k] = load(node.centre[k]) - set(single.centre[k]);
    // r[i][j] is the cosine between edge i of the one box and edge j of the others. Centre to centre, t is
    // along the former, u along the latter.
    V r[3][3];
    V t[3];
    V u[3];
    for (int i = 0; i < 3; ++i) {
        const auto& axis = single.axis[i];
        t[i] = hn::MulAdd(set(axis[0]), between[0],
                          hn::MulAdd(set(axis[1]), between[1], set(axis[2]) * between[2]));
    }
    for (int j = 0; j < 3; ++j) {
        const V axis[3] = {load(node.axis[j][0]), load(node.axis[j][1]), load(node.axis[j][2])};
        u[j] = hn::MulAdd(axis[0], between[0], hn::MulAdd(axis[1], between[1], axis[2] * between[2]));
        for (int i = 0; i < 3; ++i) {
            r[i][j] =
                hn::MulAdd(axis[0], set(single.axis[i][0]),
                           hn::MulAdd(axis[1], set(single.axis[i][1]), axis[2] * set(single.axis[i][2])));
        }
    }
    const auto s = [&](int i, int j) HWY_ATTR { return hn::Abs(r[i][j]); };

    V widest_gap = set(-std::numeric_limits<float>::max());
    V lower[2] = {zero, zero};
    for (int i = 0; i < 3; ++i) {
        const V own =
            hn::MulAdd(s(i, 0), h[0], hn::MulAdd(s(i, 1), h[1], hn::MulAdd(s(i, 2), h[2], set(a[i]))));
        const V others = hn::MulAdd(s(0, i), set(a[0]),
                                    hn::MulAdd(s(1, i), set(a[1]), hn::MulAdd(s(2, i), set(a[2]), h[i])));
        const V gaps[2] = {hn::Abs(t[i]) - own, hn::Abs(u[i]) - others};
        for (int side = 0; side < 2; ++side) {
            widest_gap = hn::Max(gaps[side], widest_gap);
            if constexpr (kGoal == SearchGoal::Nearest) {
                const V apart = hn::Max(gaps[side] - set(margin), zero);
                lower[side] = hn::MulAdd(apart, apart, lower[side]);
            }
        }
    }
    const V limits = set(limit);
    V least = hn::Max(lower[0], lower[1]) * set(kShrink);
    if constexpr (kGoal == SearchGoal::Crossings) {
        if (hn::AllTrue(d, widest_gap > set(margin))) return;
    } else {
        if (hn::AllTrue(d, least > limits)) return;
    }
    V best = zero;
    for (int i = 0; i < 3; ++i) {
        const int i1 = (i + 1) % 3;
        const int i2 = (i + 2) % 3;
        for (int j = 0; j < 3; ++j) {
            const int j1 = (j + 1) % 3;
            const int j2 = (j + 2) % 3;
            const V along = hn::MulSub(t[i2], r[i1][j], t[i1] * r[i2][j]);
            const V radii = hn::MulAdd(
                h[j1], s(i, j2),
                hn::MulAdd(h[j2], s(i, j1), hn::MulAdd(set(a[i1]), s(i2, j), set(a[i2]) * s(i1, j))));
            const V gap = hn::Abs(along) - radii;
            if constexpr (kGoal == SearchGoal::Crossings) {
                best = hn::Max(gap, best);
            } else {
                // A cross product is as long as the sine between both edges.
                const V sine_squared = hn::NegMulAdd(r[i][j], r[i][j], set(1.0F + 0x1p-20F));
                const V inverse = hn::IfThenElseZero(sine_squared > set(kSmallestSineSquared),
                                                     hn::ApproximateReciprocalSqrt(sine_squared));
                best = hn::Max((gap - set(margin)) * inverse, best);
            }
        }
    }
    auto apart = hn::Max(widest_gap, best) > set(margin);
    if constexpr (kGoal == SearchGoal::Nearest) {
        best = best * set(kRootShrink);
        least = hn::Max(least, best * best);
        apart = least > limits;
    }
    hn::Store(least, d, look.lower + from_lane);
    hn::Store(widest_gap, d, look.gap + from_lane);
    std::uint8_t bits[8] = {};
    hn::StoreMaskBits(d, hn::Not(apart), bits);
    look.near |= static_cast<unsigned>(bits[0]) << from_lane;
}

/// A smaller limit would leave out too much. None is beyond the lanes that are out of use.
float RoundUp(double limit_squared) {
    constexpr double kLargest = 0.5 * static_cast<double>(std::numeric_limits<float>::max());
    return static_cast<float>(std::min(limit_squared, kLargest)) * (1.0F + 0x1p-22F);
}

float SizeOf(const OBBNode& node, std::uint32_t lane) {
    return node.half[0][lane] + node.half[1][lane] + node.half[2][lane];
}

/// For a heap with the most urgent pair in front.
bool IsLessUrgent(const FilterPair& a, const FilterPair& b) {
    return a.urgency > b.urgency;
}

/// The search for one goal.
template <SearchGoal kGoal>
class Worker {
public:
    Worker(const FilterTask& task, std::vector<FilterPair>& pending) : task_(task), pending_(pending) {}

    void Run(std::size_t budget) {
        for (; !pending_.empty() && budget > 0; --budget) {
            const FilterPair pair = Take();
            const float limit = RoundUp(task_.limit.Squared());
            if (pair.lower > limit) continue;
            Open(pair, limit);
        }
    }

private:
    static constexpr std::uint32_t kLanes = OBBNode::kLanes;

    FilterPair Take() {
        if constexpr (kGoal == SearchGoal::Nearest)
            std::pop_heap(pending_.begin(), pending_.end(), IsLessUrgent);
        const FilterPair pair = pending_.back();
        pending_.pop_back();
        return pair;
    }

    /// Goes on with the children of the larger box, or with the triangles.
    HWY_INLINE void Open(const FilterPair& pair, float limit) {
        const OBBNode& first_node = task_.first.NodeOf(pair.first);
        const OBBNode& second_node = task_.second.NodeOf(pair.second);
        const std::uint32_t first_lane = pair.first % kLanes;
        const std::uint32_t second_lane = pair.second % kLanes;
        const std::uint32_t first_child = first_node.child[first_lane];
        const std::uint32_t second_child = second_node.child[second_lane];
        const bool first_is_leaf = (first_child & OBBHierarchy::kLeafBit) != 0;
        const bool second_is_leaf = (second_child & OBBHierarchy::kLeafBit) != 0;
        if (first_is_leaf && second_is_leaf) {
            VisitTriangles(first_child, second_child, limit);
        } else if (second_is_leaf ||
                   (!first_is_leaf && SizeOf(first_node, first_lane) >= SizeOf(second_node, second_lane))) {
            LookAt(Turn(second_node, second_lane, task_.from_first), task_.first[first_child], limit);
            Add([&](std::uint32_t lane) {
                return FilterPair{first_child * kLanes + lane, pair.second, 0.0F, 0.0F};
            });
        } else {
            LookAt(Turn(first_node, first_lane, task_.from_second), task_.second[second_child], limit);
            Add([&](std::uint32_t lane) {
                return FilterPair{pair.first, second_child * kLanes + lane, 0.0F, 0.0F};
            });
        }
    }

    HWY_INLINE void LookAt(const TurnedBox& single, const OBBNode& node, float limit) {
        look_.near = 0;
        for (std::size_t lane = 0; lane < kLanes; lane += hn::Lanes(Lanes()))
            LookAtLanes<kGoal>(single, node, lane, task_.margin, limit, look_);
    }

    /// Adds the near lanes of a look.
    template <typename MakePair>
    HWY_INLINE void Add(MakePair make_pair) {
        const auto begin = static_cast<std::ptrdiff_t>(pending_.size());
        for (std::uint32_t lane = 0; lane < kLanes; ++lane) {
            if ((look_.near >> lane & 1U) == 0) continue;
            FilterPair pair = make_pair(lane);
            pair.lower = look_.lower[lane];
            pair.urgency = pair.lower > 0.0F ? pair.lower : look_.gap[lane];
            pending_.push_back(pair);
            if constexpr (kGoal == SearchGoal::Nearest) {
                std::push_heap(pending_.begin(), pending_.end(), IsLessUrgent);
                continue;
            }
            // The most urgent one goes last: a handful, sorted as it grows.
            for (auto at = pending_.end() - 1; at - pending_.begin() > begin && IsLessUrgent(*at, *(at - 1));
                 --at)
                std::swap(*at, *(at - 1));
        }
    }

    HWY_INLINE void VisitTriangles(std::uint32_t first_child, std::uint32_t second_child, float limit) {
        const OBBLeaf& first = task_.first.LeafOf(first_child);
        const OBBLeaf& second = task_.second.LeafOf(second_child);
        TriangleSieve sieve(first);
        sieve.SetSecond(second, task_.from_first);
        const float reach = (std::sqrt(std::max(limit, 0.0F)) + task_.margin) * (1.0F + 0x1p-20F);
        const unsigned second_lanes = (1U << OBBHierarchy::TriangleCountOf(second_child)) - 1U;
        for (std::uint32_t i = 0; i < OBBHierarchy::TriangleCountOf(first_child); ++i) {
            const unsigned near = sieve.NearOnes(i, reach, kGoal == SearchGoal::Nearest) & second_lanes;
            for (std::uint32_t j = 0; j < OBBLeaf::kLanes; ++j) {
                if ((near >> j & 1U) == 0) continue;
                task_.visit({first.triangle[i], first.binary_leaf[i]},
                            {second.triangle[j], second.binary_leaf[j]});
            }
        }
    }

    const FilterTask& task_;
    std::vector<FilterPair>& pending_;
    Look look_;
};

void WorkOffHere(const FilterTask& task, std::vector<FilterPair>& pending, std::size_t budget) {
    if (task.goal == SearchGoal::Crossings) {
        Worker<SearchGoal::Crossings>(task, pending).Run(budget);
    } else {
        Worker<SearchGoal::Nearest>(task, pending).Run(budget);
    }
}

}  // namespace
}  // namespace tarn::details::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarn::details {

HWY_EXPORT(WorkOffHere);

void WorkOff(const FilterTask& task, std::vector<FilterPair>& pending, std::size_t budget) {
    HWY_DYNAMIC_DISPATCH(WorkOffHere)(task, pending, budget);
}

}  // namespace tarn::details
#endif
