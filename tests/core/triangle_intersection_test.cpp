#include "core/triangle_intersection.h"

#include "core/exact_triangle_test.h"
#include "core/triangle_crossing.h"
#include "support/placements.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <utility>

namespace tarn::details {
namespace {

using test::Position;
using Corners = std::array<Vector3, 3>;

constexpr std::array<std::array<std::size_t, 3>, 6> kOrders{
    {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {2, 1, 0}, {1, 0, 2}}};

TriangleData DataOf(const Corners& c) {
    return {c[0].x, c[0].y, c[0].z, c[1].x, c[1].y, c[1].z, c[2].x, c[2].y, c[2].z};
}

TriangleData Reordered(const TriangleData& t, const std::array<std::size_t, 3>& order) {
    const Corners c{Vertex0(t), Vertex1(t), Vertex2(t)};
    return DataOf({c[order[0]], c[order[1]], c[order[2]]});
}

bool Intersect(const TriangleData& a, const TriangleData& b) {
    return TrianglesIntersect(a, PlaneOf(a), b, PlaneOf(b));
}

/// One answer for all vertex orders of both, for both orders of the pair, and for axes swapped and moved.
void ExpectAlways(bool expected, const TriangleData& a, const TriangleData& b) {
    for (const MATRIX& placement : {MATRIX{}, MATRIX{0, 0, 1, 5, 1, 0, 0, -9, 0, -1, 0, 3},
                                    test::Translation(1048576, -1048576, 524288)}) {
        for (const auto& order_a : kOrders) {
            for (const auto& order_b : kOrders) {
                const TriangleData placed_a = Place(placement, Reordered(a, order_a));
                const TriangleData placed_b = Place(placement, Reordered(b, order_b));
                ASSERT_EQ(Intersect(placed_a, placed_b), expected);
                ASSERT_EQ(Intersect(placed_b, placed_a), expected);
            }
        }
    }
}

TEST(TrianglesIntersect, AgreesWithExactArithmeticAwayFromContactAsEdgesDo) {
    std::mt19937_64 random(1);
    std::array<int, 3> counts{};
    for (int i = 0; i < 12000; ++i) {
        SCOPED_TRACE(i);
        const std::int64_t reach = i % 3 == 0 ? 6 : i % 3 == 1 ? 30 : 1000;
        const test::WholeTriangle whole_a = test::RandomWhole(random, reach);
        const test::WholeTriangle whole_b = test::RandomWhole(random, reach);
        const TriangleData a = test::DataOf(whole_a);
        const TriangleData b = test::DataOf(whole_b);
        // Turned and moved, the coordinates are rounded, by far less than what separates these answers.
        const MATRIX placement = test::RandomRigid(random, 100);
        const TriangleData placed_a = Place(placement, a);
        const TriangleData placed_b = Place(placement, b);
        const Position edge = test::SegmentAgainst(whole_a, whole_b[0], whole_b[1]);
        if (edge != Position::Undecided) {
            const bool crosses = edge == Position::Crossing;
            Vector3 point;
            ASSERT_EQ(SegmentCrossesTriangle(a, Vertex0(b), Vertex1(b), point), crosses);
            ASSERT_EQ(SegmentCrossesTriangle(placed_a, Vertex0(placed_b), Vertex1(placed_b), point), crosses);
        }
        const Position exact = test::TriangleAgainst(whole_a, whole_b);
        ++counts[static_cast<std::size_t>(exact)];
        if (exact == Position::Undecided) continue;
        ASSERT_NO_FATAL_FAILURE(ExpectAlways(exact == Position::Crossing, a, b));
        ASSERT_EQ(Intersect(placed_a, placed_b), exact == Position::Crossing);
    }
    for (const int count : counts) EXPECT_GT(count, 200) << "every outcome must be met";
}

TEST(TrianglesIntersect, MissesCrossingsBelowTheTolerance) {
    // Signed values +-v against a unit-area plane: products of exactly 1e-12 are seen, any smaller are not.
    const auto products_of = [](double v) {
        const TriangleData b{0, 0, v, 1, 0, -1, 0, 1, -1};
        return TrianglesIntersect({-8, -8, 0, 8, -8, 0, 0, 8, 0}, {{0, 0, 1}, 0}, b, PlaneOf(b));
    };
    EXPECT_TRUE(products_of(1e-12));
    EXPECT_FALSE(products_of(std::nextafter(1e-12, 0.0)));
}

/// The rules once more, step by step and without a thought for speed, on values from `double` to the last
/// bit.
class PlainRules {
public:
    static bool Intersect(const Corners& a, const Corners& b) {
        const Vector3 m = Cross(a[1] - a[0], a[2] - a[0]);
        const Vector3 n = Cross(b[1] - b[0], b[2] - b[0]);
        const Values b_to_a = ValuesOf(b, m, a[0]);
        const Values a_to_b = ValuesOf(a, n, b[0]);
        if (IsExcluded(b_to_a) || IsExcluded(a_to_b)) return false;
        const Vector3 line = Cross(m, n);
        const bool y_wins = std::fabs(line.y) > std::fabs(line.x);
        const int axis = std::fabs(line.z) > std::fabs(y_wins ? line.y : line.x) ? 2 : y_wins ? 1 : 0;
        const auto [a_from, a_to] = IntervalOf(a, a_to_b, axis);
        const auto [b_from, b_to] = IntervalOf(b, b_to_a, axis);
        return !(a_to < b_from) && !(b_to < a_from);
    }

private:
    using Values = std::array<double, 3>;

    static Values ValuesOf(const Corners& t, const Vector3& n, const Vector3& on_plane) {
        const double d = -Dot(n, on_plane);
        return {Dot(n, t[0]) + d, Dot(n, t[1]) + d, Dot(n, t[2]) + d};
    }
    static bool IsExcluded(const Values& values) {
        const double q1 = values[0] * values[1];
        const double q2 = values[0] * values[2];
        return (std::fabs(q1) < 1e-12 && std::fabs(q2) < 1e-12) || (q1 > 0 && q2 > 0);
    }
    static std::size_t LoneVertex(const Values& v) {
        if (v[0] * v[1] > 0) return 2;
        if (v[0] * v[2] > 0) return 1;
        if (v[1] * v[2] > 0 || v[0] != 0) return 0;
        return v[1] != 0 ? 1 : 2;
    }
    static std::pair<double, double> IntervalOf(const Corners& t, const Values& v, int axis) {
        const std::size_t lone = LoneVertex(v);
        const auto towards = [&](std::size_t i) {
            return t[lone][axis] + (t[i][axis] - t[lone][axis]) * v[lone] / (v[lone] - v[i]);
        };
        const double from = towards(lone == 0 ? 1 : 0);
        const double to = towards(lone == 2 ? 1 : 2);
        return from > to ? std::pair(to, from) : std::pair(from, to);
    }
};

TEST(TrianglesIntersect, FollowsItsRulesToTheLastBit) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> unit(-1, 1);
    const double odd_values[] = {0.0,   -0.0, 1.0,       -1.0,       1e-6,         -1e-6, 1e-9,
                                 1e160, 1e60, kInfinity, -kInfinity, std::nan(""), 5e-324};
    int true_count = 0;
    for (int i = 0; i < 300000; ++i) {
        const auto coordinate = [&] {
            if (i % 4 == 0) return unit(random);
            if (i % 4 == 1) return std::round(3 * unit(random)) + 1e-13 * std::round(unit(random));
            if (i % 4 == 2) return std::ldexp(unit(random), static_cast<int>(random() % 30) - 20);
            return odd_values[random() % std::size(odd_values)];
        };
        std::array<Corners, 2> pair;
        for (Corners& triangle : pair) {
            for (Vector3& vertex : triangle) vertex = {coordinate(), coordinate(), coordinate()};
        }
        if (random() % 8 == 0) pair[1][random() % 3] = pair[0][random() % 3];
        const bool expected = PlainRules::Intersect(pair[0], pair[1]);
        ASSERT_EQ(Intersect(DataOf(pair[0]), DataOf(pair[1])), expected) << "iteration " << i;
        true_count += expected ? 1 : 0;
    }
    EXPECT_GT(true_count, 30000);
}

/// A triangle of the plane lifted into space: u and v are kept, the coordinate to be dropped is (slope u + v)
/// / 2, so the plane's normal is longest along it.
TriangleData Lifted(const test::WholeTriangle2& triangle, int dropped, int slope) {
    Corners corners{};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto u = static_cast<double>(triangle[i][0]);
        const auto v = static_cast<double>(triangle[i][1]);
        const double w = (slope * u + v) / 2;
        corners[i] = dropped == 0 ? Vector3{w, u, v} : dropped == 1 ? Vector3{u, w, v} : Vector3{u, v, w};
    }
    return DataOf(corners);
}

TEST(CoplanarTrianglesIntersect, AgreesWithExactArithmeticInAllProjections) {
    std::mt19937_64 random(4);
    std::array<int, 2> counts{};
    for (int i = 0; i < 30000; ++i) {
        SCOPED_TRACE(i);
        std::uniform_int_distribution<std::int64_t> coordinate(0, i % 2 == 0 ? 5 : 50);
        test::WholeTriangle2 pair[2];
        for (test::WholeTriangle2& t : pair) {
            do {
                for (auto& vertex : t) vertex = {coordinate(random), coordinate(random)};
            } while (test::TwiceArea(t[0], t[1], t[2]) == 0);
        }
        const bool expected = test::SharePoint(pair[0], pair[1]);
        ++counts[expected ? 1 : 0];
        for (int dropped = 0; dropped < 3; ++dropped) {
            const TriangleData a = Lifted(pair[0], dropped, i % 3 - 1);
            const TriangleData b = Lifted(pair[1], dropped, i % 3 - 1);
            for (const auto& order : kOrders) {
                const TriangleData reordered = Reordered(b, order);
                ASSERT_EQ(CoplanarTrianglesIntersect(Normal(a), a, reordered), expected);
                ASSERT_EQ(CoplanarTrianglesIntersect(Normal(b), reordered, a), expected);
            }
        }
    }
    EXPECT_GT(std::min(counts[0], counts[1]), 1000);
}

TEST(CoplanarTrianglesIntersect, DropsTheAxisOfTheNormalsLongestComponent) {
    for (const auto& [normal, dropped] : {std::pair(Vector3{-3, 1, 2}, 0),
                                          {{1, -3, 2}, 1},
                                          {{1, 2, -3}, 2},
                                          {{2, 2, 1}, 1},
                                          {{1, 2, 2}, 1},
                                          {{2, 1, 2}, 2},
                                          {{2, 1, 1}, 0},
                                          {{2, 2, 2}, 1}}) {
        for (int axis = 0; axis < 3; ++axis) {
            // The same triangle twice, apart along one axis: dropping that axis makes them meet.
            const TriangleData a{0, 0, 0, 4, 1, 2, 1, 3, 4};
            const TriangleData b =
                Place(test::Translation(axis == 0 ? 9 : 0, axis == 1 ? 9 : 0, axis == 2 ? 9 : 0), a);
            EXPECT_EQ(CoplanarTrianglesIntersect(normal, a, b), axis == dropped)
                << normal.x << ' ' << normal.y << ' ' << normal.z << ", apart along " << axis;
        }
    }
}

}  // namespace
}  // namespace tarn::details
