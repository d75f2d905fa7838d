// Compiled once for each set of instructions, by whoever includes it: see filter_step.cpp.
#if defined(TARN_DETECT_TRIANGLE_SIEVE_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TARN_DETECT_TRIANGLE_SIEVE_INL_H
#undef TARN_DETECT_TRIANGLE_SIEVE_INL_H
#else
#define TARN_DETECT_TRIANGLE_SIEVE_INL_H
#endif

#include "core/obb_hierarchy.h"
#include "detect/filter_step.h"

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace tarn::details::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// Four triangles at a time: which of them are near which four others.
class TriangleSieve {
    static constexpr std::size_t kLanes = OBBLeaf::kLanes;
    using Lanes = hn::CappedTag<float, kLanes>;
    using V = hn::Vec<Lanes>;

public:
    /// The triangles of a leaf of the first tree.
    HWY_INLINE explicit TriangleSieve(const OBBLeaf& first) {
        ForAllLanes([&](std::size_t lane) HWY_ATTR {
            V v[3][3];
            for (int i = 0; i < 3; ++i) {
                for (int k = 0; k < 3; ++k) v[i][k] = Load(first.vertex[i][k] + lane);
            }
            first_.Set(v, lane);
        });
    }

    /// Takes triangles of the second tree into the first one's frame.
    HWY_INLINE void SetSecond(const OBBLeaf& second, const FilterView& from_first) {
        ForAllLanes([&](std::size_t lane) HWY_ATTR {
            V v[3][3];
            for (int i = 0; i < 3; ++i) {
                const V x = Load(second.vertex[i][0] + lane);
                const V y = Load(second.vertex[i][1] + lane);
                const V z = Load(second.vertex[i][2] + lane);
                for (int k = 0; k < 3; ++k) {
                    const auto& r = from_first.rotation[k];
                    v[i][k] = hn::MulAdd(
                        Set(r[0]), x,
                        hn::MulAdd(Set(r[1]), y, hn::MulAdd(Set(r[2]), z, Set(from_first.offset[k]))));
                }
            }
            second_.Set(v, lane);
        });
    }

    /// The triangles of the second leaf that are not shown to be more than `reach` from triangle `i` of the
    /// first: a bit for each. Looks along both normals and the axes of the first frame; thoroughly, also from
    /// nearly the nearest point of one to that of the other. Whatever is no number shows nothing.
    HWY_INLINE unsigned NearOnes(std::size_t i, float reach, bool thoroughly) const {
        unsigned near = 0;
        const V limit = Set(reach);
        const V limit_squared = Set(reach * reach);
        ForAllLanes([&](std::size_t lane) HWY_ATTR {
            V lo;
            V hi;
            // Along the normal of the first triangle, then along those of the second ones.
            const V n[3] = {Set(first_.normal[0][i]), Set(first_.normal[1][i]), Set(first_.normal[2][i])};
            second_.Project(n, lane, lo, hi);
            const V first_gap = hn::Max(lo - Set(first_.hi[i]), Set(first_.lo[i]) - hi);
            const V m[3] = {Load(second_.normal[0] + lane), Load(second_.normal[1] + lane),
                            Load(second_.normal[2] + lane)};
            first_.ProjectOne(i, m, lo, hi);
            const V second_gap = hn::Max(lo - Load(second_.hi + lane), Load(second_.lo + lane) - hi);
            auto apart = hn::Or(first_gap > limit, second_gap > limit);

            V squared = hn::Zero(Lanes());
            for (int k = 0; k < 3; ++k) {
                const V gap = hn::Max(hn::Max(Load(second_.box_lo[k] + lane) - Set(first_.box_hi[k][i]),
                                              Set(first_.box_lo[k][i]) - Load(second_.box_hi[k] + lane)),
                                      hn::Zero(Lanes()));
                squared = hn::MulAdd(gap, gap, squared);
            }
            apart = hn::Or(apart, squared * Set(1.0F - 0x1p-20F) > limit_squared);
            if (thoroughly && !hn::AllTrue(Lanes(), apart)) {
                V towards[3];
                Towards(i, lane, towards);
                V others_lo;
                V others_hi;
                first_.ProjectOne(i, towards, lo, hi);
                second_.Project(towards, lane, others_lo, others_hi);
                apart = hn::Or(apart, hn::Max(others_lo - hi, lo - others_hi) > limit);
            }
            std::uint8_t bits[8] = {};
            hn::StoreMaskBits(Lanes(), hn::Not(apart), bits);
            near |= static_cast<unsigned>(bits[0]) << lane;
        });
        return near & ((1U << kLanes) - 1U);
    }

private:
    static HWY_INLINE V Set(float value) { return hn::Set(Lanes(), value); }
    static HWY_INLINE V Load(const float* values) { return hn::Load(Lanes(), values); }

    template <typename Body>
    static HWY_INLINE void ForAllLanes(Body body) {
        for (std::size_t lane = 0; lane < kLanes; lane += hn::Lanes(Lanes())) body(lane);
    }

    /// Triangles by a vertex and two edges from there.
    struct Edges {
        V base[3];
        V edge0[3];
        V edge1[3];
    };

    static HWY_INLINE V Dot(const V (&a)[3], const V (&b)[3]) {
        return hn::MulAdd(a[0], b[0], hn::MulAdd(a[1], b[1], a[2] * b[2]));
    }

    static HWY_INLINE V Clamp(V value) { return hn::Max(hn::Min(value, Set(1.0F)), hn::Zero(Lanes())); }

    /// Moves points to the nearest ones of triangles: inside of them, or on the best of the three edges.
    static HWY_INLINE void MoveOnto(const Edges& triangle, V (&point)[3]) {
        V offset[3];
        for (int k = 0; k < 3; ++k) offset[k] = point[k] - triangle.base[k];
        const V a = Dot(triangle.edge0, triangle.edge0);
        const V b = Dot(triangle.edge0, triangle.edge1);
        const V c = Dot(triangle.edge1, triangle.edge1);
        const V d = Dot(triangle.edge0, offset);
        const V e = Dot(triangle.edge1, offset);
        // The squared distance, but for what is the same everywhere, of the point s, t.
        const auto form = [&](V s, V t) HWY_ATTR {
            return s * (a * s + Set(2.0F) * (b * t - d)) + t * (c * t - Set(2.0F) * e);
        };
        V best_s = Clamp(d / a);
        V best_t = hn::Zero(Lanes());
        V least = form(best_s, best_t);
        const auto attempt = [&](V s, V t) HWY_ATTR {
            const V value = form(s, t);
            const auto is_better = value < least;
            best_s = hn::IfThenElse(is_better, s, best_s);
            best_t = hn::IfThenElse(is_better, t, best_t);
            least = hn::Min(value, least);
        };
        attempt(hn::Zero(Lanes()), Clamp(e / c));
        const V t = Clamp((a - b + e - d) / (a - Set(2.0F) * b + c));
        attempt(Set(1.0F) - t, t);
        const V inverse = Set(1.0F) / (a * c - b * b);
        const V inner_s = (c * d - b * e) * inverse;
        const V inner_t = (a * e - b * d) * inverse;
        const auto is_inside = hn::And(hn::And(inner_s > hn::Zero(Lanes()), inner_t > hn::Zero(Lanes())),
                                       inner_s + inner_t < Set(1.0F));
        best_s = hn::IfThenElse(is_inside, inner_s, best_s);
        best_t = hn::IfThenElse(is_inside, inner_t, best_t);
        for (int k = 0; k < 3; ++k) {
            point[k] = hn::MulAdd(best_s, triangle.edge0[k],
                                  hn::MulAdd(best_t, triangle.edge1[k], triangle.base[k]));
        }
    }

    /// Unit vectors from triangle `i` of the first leaf to those of the second, by a few alternating
    /// projections; zero where there is nothing between.
    HWY_INLINE void Towards(std::size_t i, std::size_t lane, V (&direction)[3]) const {
        Edges first;
        Edges second;
        V on_first[3];
        V on_second[3];
        for (int k = 0; k < 3; ++k) {
            first.base[k] = Set(first_.vertex[0][k][i]);
            first.edge0[k] = Set(first_.vertex[1][k][i]) - first.base[k];
            first.edge1[k] = Set(first_.vertex[2][k][i]) - first.base[k];
            second.base[k] = Load(second_.vertex[0][k] + lane);
            second.edge0[k] = Load(second_.vertex[1][k] + lane) - second.base[k];
            second.edge1[k] = Load(second_.vertex[2][k] + lane) - second.base[k];
            on_first[k] = hn::MulAdd(Set(1.0F / 3.0F), second.edge0[k] + second.edge1[k], second.base[k]);
        }
        MoveOnto(first, on_first);
        for (int k = 0; k < 3; ++k) on_second[k] = on_first[k];
        MoveOnto(second, on_second);
        for (int k = 0; k < 3; ++k) on_first[k] = on_second[k];
        MoveOnto(first, on_first);
        for (int k = 0; k < 3; ++k) direction[k] = on_second[k] - on_first[k];
        const V squared = Dot(direction, direction);
        const V inverse = hn::IfThenElseZero(squared > Set(kSmallestSquare), Set(1.0F) / hn::Sqrt(squared));
        for (V& component : direction) component = component * inverse;
    }

    /// Four triangles in the first frame.
    struct Side {
        alignas(16) float vertex[3][3][kLanes];
        /// Unit normals, or zero where there is none to speak of.
        alignas(16) float normal[3][kLanes];
        /// Where the triangle itself lies along its normal.
        alignas(16) float lo[kLanes];
        alignas(16) float hi[kLanes];
        alignas(16) float box_lo[3][kLanes];
        alignas(16) float box_hi[3][kLanes];

        HWY_INLINE void Set(const V (&v)[3][3], std::size_t lane) {
            const Lanes d;
            V e[3];
            V f[3];
            for (int k = 0; k < 3; ++k) {
                for (int i = 0; i < 3; ++i) hn::Store(v[i][k], d, vertex[i][k] + lane);
                e[k] = v[1][k] - v[0][k];
                f[k] = v[2][k] - v[0][k];
                hn::Store(hn::Min(hn::Min(v[0][k], v[1][k]), v[2][k]), d, box_lo[k] + lane);
                hn::Store(hn::Max(hn::Max(v[0][k], v[1][k]), v[2][k]), d, box_hi[k] + lane);
            }
            V n[3];
            for (int k = 0; k < 3; ++k) {
                const int k1 = (k + 1) % 3;
                const int k2 = (k + 2) % 3;
                n[k] = hn::MulSub(e[k1], f[k2], e[k2] * f[k1]);
            }
            const V squared = hn::MulAdd(n[0], n[0], hn::MulAdd(n[1], n[1], n[2] * n[2]));
            const V inverse = hn::IfThenElseZero(squared > hn::Set(d, kSmallestSquare),
                                                 hn::Set(d, 1.0F) / hn::Sqrt(squared));
            for (int k = 0; k < 3; ++k) {
                n[k] = n[k] * inverse;
                hn::Store(n[k], d, normal[k] + lane);
            }
            V own_lo;
            V own_hi;
            Project(n, lane, own_lo, own_hi);
            hn::Store(own_lo, d, lo + lane);
            hn::Store(own_hi, d, hi + lane);
        }

        /// Where the triangles lie along directions.
        HWY_INLINE void Project(const V (&n)[3], std::size_t lane, V& along_lo, V& along_hi) const {
            const auto along = [&](int i) HWY_ATTR {
                return hn::MulAdd(
                    n[0], Load(vertex[i][0] + lane),
                    hn::MulAdd(n[1], Load(vertex[i][1] + lane), n[2] * Load(vertex[i][2] + lane)));
            };
            Span(along(0), along(1), along(2), along_lo, along_hi);
        }
        /// Where one of them lies along several directions.
        HWY_INLINE void ProjectOne(std::size_t one, const V (&n)[3], V& along_lo, V& along_hi) const {
            const auto along = [&](int i) HWY_ATTR {
                return hn::MulAdd(n[0], TriangleSieve::Set(vertex[i][0][one]),
                                  hn::MulAdd(n[1], TriangleSieve::Set(vertex[i][1][one]),
                                             n[2] * TriangleSieve::Set(vertex[i][2][one])));
            };
            Span(along(0), along(1), along(2), along_lo, along_hi);
        }
        static HWY_INLINE void Span(V a, V b, V c, V& along_lo, V& along_hi) {
            along_lo = hn::Min(hn::Min(a, b), c);
            along_hi = hn::Max(hn::Max(a, b), c);
        }
    };

    /// Below, a normal is lost in the rounding of its square.
    static constexpr float kSmallestSquare = 1e-30F;

    Side first_;
    Side second_;
};

}  // namespace tarn::details::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
