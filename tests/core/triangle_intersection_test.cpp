#include "core/triangle_intersection.h"

#include "core/exact_triangle_test.h"
#include "support/placements.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
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
using test::WholePoint;
using test::WholeTriangle;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::array<std::array<std::size_t, 3>, 6> kOrders{
    {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {2, 1, 0}, {1, 0, 2}}};

using Corners = std::array<Vector3, 3>;

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

/// One answer for all vertex orders of both, for both orders of the pair, under the placements and for any
/// swap of axes.
void ExpectAlways(bool expected, const TriangleData& a, const TriangleData& b) {
    const MATRIX placements[] = {{},
                                 {0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0},
                                 {0, 0, 1, 5, 1, 0, 0, -9, 0, -1, 0, 3},
                                 test::Translation(1048576, -1048576, 524288)};
    for (const MATRIX& placement : placements) {
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

WholeTriangle RandomWhole(std::mt19937_64& random, std::int64_t reach) {
    std::uniform_int_distribution<std::int64_t> coordinate(-reach, reach);
    WholeTriangle triangle;
    for (WholePoint& vertex : triangle) {
        for (std::int64_t& c : vertex) c = coordinate(random);
    }
    return triangle;
}

TEST(TrianglesIntersect, AgreesWithExactArithmeticAwayFromContact) {
    std::mt19937_64 random(1);
    std::array<int, 3> counts{};
    for (int i = 0; i < 12000; ++i) {
        SCOPED_TRACE(i);
        const std::int64_t reach = i % 3 == 0 ? 6 : i % 3 == 1 ? 30 : 1000;
        const WholeTriangle a = RandomWhole(random, reach);
        const WholeTriangle b = RandomWhole(random, reach);
        const Position exact = test::TriangleAgainst(a, b);
        ++counts[static_cast<std::size_t>(exact)];
        if (exact == Position::Undecided) continue;
        ASSERT_NO_FATAL_FAILURE(ExpectAlways(exact == Position::Crossing, test::DataOf(a), test::DataOf(b)));
        // Turned and moved, the coordinates are rounded, by far less than what separates these answers.
        const MATRIX placement = test::RandomRigid(random, 100);
        ASSERT_EQ(Intersect(Place(placement, test::DataOf(a)), Place(placement, test::DataOf(b))),
                  exact == Position::Crossing);
    }
    for (const int count : counts) EXPECT_GT(count, 200) << "every outcome must be met";
}

TEST(TrianglesIntersect, IgnoresATriangleWhoseFirstVertexLiesOnTheOthersPlane) {
    const Corners base{{{-8, -8, 0}, {8, -8, 0}, {0, 8, 0}}};
    // The first vertex lies on the base's plane, inside the base; the others on either side.
    const Corners through{{{0, 0, 0}, {1, 1, 3}, {2, 1, -3}}};
    const TriangleData a = DataOf(base);
    for (const auto& order : kOrders) {
        const TriangleData b = Reordered(DataOf(through), order);
        const bool expected = order[0] != 0;
        EXPECT_EQ(Intersect(a, b), expected) << "vertex " << order[0] << " first";
        EXPECT_EQ(Intersect(b, a), expected) << "vertex " << order[0] << " first, pair swapped";
    }
    // One vertex touches: seen unless it comes first. Two do: never seen, as both products vanish in any
    // order.
    const Corners touching{{{0, 0, 0}, {1, 1, 3}, {2, 1, 4}}};
    const Corners resting{{{0, 0, 0}, {1, 1, 0}, {2, 1, 4}}};
    for (const auto& order : kOrders) {
        EXPECT_EQ(Intersect(a, Reordered(DataOf(touching), order)), order[0] != 0);
        EXPECT_FALSE(Intersect(a, Reordered(DataOf(resting), order)));
    }
}

TEST(TrianglesIntersect, NeverSeesCoplanarTriangles) {
    const TriangleData a{0, 0, 1, 4, 0, 1, 0, 4, 1};
    ExpectAlways(false, a, a);
    ExpectAlways(false, a, {1, 1, 1, 2, 1, 1, 1, 2, 1});
    ExpectAlways(false, a, {1, 1, 1, 9, 1, 1, 1, 9, 1});
    ExpectAlways(false, {1, 2, 3, 5, 3, 4, 2, 6, 3}, {1, 2, 3, 5, 3, 4, 2, 6, 3});
}

TEST(TrianglesIntersect, CountsASharedEndOfTheClosedIntervals) {
    // Cuts the interval [-2, 2] from the x axis.
    const TriangleData a{0, -4, 0, 4, 4, 0, -4, 4, 0};
    const auto upright_from = [](double x) { return TriangleData{x, 0, 1, x, 0, -1, x + 6, 0, 1}; };
    ExpectAlways(true, a, upright_from(2.0));
    EXPECT_FALSE(Intersect(a, upright_from(std::nextafter(2.0, 3.0))));
    EXPECT_TRUE(Intersect(a, upright_from(std::nextafter(2.0, 1.0))));
    ExpectAlways(false, a, upright_from(2.5));
}

TEST(TrianglesIntersect, MissesCrossingsOfTrianglesBelowTheTolerance) {
    const auto cross_of_size = [](double size) {
        const TriangleData a{-size, -size, 0, size, -size, 0, 0, size, 0};
        const TriangleData b{0, -size, -size, 0, -size, size, 0, size, size / 4};
        return Intersect(a, b) && Intersect(b, a);
    };
    EXPECT_TRUE(cross_of_size(1.0));
    EXPECT_TRUE(cross_of_size(0.1));
    EXPECT_FALSE(cross_of_size(0.001));
    // Signed values +-v against a unit-area plane: products of exactly 1e-12 are seen, any smaller are not.
    const auto products_of = [](double v) {
        const Plane plane{{0, 0, 1}, 0};
        const TriangleData a{-8, -8, 0, 8, -8, 0, 0, 8, 0};
        const TriangleData b{0, 0, v, 1, 0, -1, 0, 1, -1};
        return TrianglesIntersect(a, plane, b, PlaneOf(b));
    };
    EXPECT_TRUE(products_of(1e-12));
    EXPECT_FALSE(products_of(std::nextafter(1e-12, 0.0)));
}

TEST(TrianglesIntersect, ExcludesNothingThatIsNotANumber) {
    std::mt19937_64 random(2);
    for (int i = 0; i < 200; ++i) {
        TriangleData a = test::DataOf(RandomWhole(random, 10));
        const TriangleData b = Place(test::Translation(1000, 0, 0), test::DataOf(RandomWhole(random, 10)));
        auto coordinates = std::bit_cast<std::array<double, 9>>(a);
        coordinates[static_cast<std::size_t>(i) % 9] = kNaN;
        a = std::bit_cast<TriangleData>(coordinates);
        if (LengthSquared(Normal(b)) == 0.0) continue;
        EXPECT_TRUE(Intersect(a, b)) << i;
        EXPECT_TRUE(Intersect(b, a)) << i;
    }
}

/// The rules once more, step by step and without a thought for speed, on values from `double` to the last
/// bit.
class PlainRules {
public:
    static bool Intersect(const Corners& a, const Corners& b) {
        const Vector3 m = NormalOf(a);
        const Vector3 n = NormalOf(b);
        const std::array<double, 3> b_to_a = ValuesOf(b, m, a[0]);
        if (IsExcluded(b_to_a)) return false;
        const std::array<double, 3> a_to_b = ValuesOf(a, n, b[0]);
        if (IsExcluded(a_to_b)) return false;
        const double dx = std::fabs(m.y * n.z - m.z * n.y);
        const double dy = std::fabs(m.z * n.x - m.x * n.z);
        const double dz = std::fabs(m.x * n.y - m.y * n.x);
        const bool y_wins = dy > dx;
        const int axis = dz > (y_wins ? dy : dx) ? 2 : y_wins ? 1 : 0;
        const std::array<double, 2> on_a = IntervalOf(a, a_to_b, axis);
        const std::array<double, 2> on_b = IntervalOf(b, b_to_a, axis);
        if (on_a[1] < on_b[0]) return false;
        if (on_b[1] < on_a[0]) return false;
        return true;
    }

private:
    static Vector3 NormalOf(const Corners& t) {
        const double ux = t[1].x - t[0].x, uy = t[1].y - t[0].y, uz = t[1].z - t[0].z;
        const double vx = t[2].x - t[0].x, vy = t[2].y - t[0].y, vz = t[2].z - t[0].z;
        return {uy * vz - uz * vy, uz * vx - ux * vz, ux * vy - uy * vx};
    }
    static std::array<double, 3> ValuesOf(const Corners& t, const Vector3& n, const Vector3& on_plane) {
        const double d = -((n.x * on_plane.x + n.y * on_plane.y) + n.z * on_plane.z);
        std::array<double, 3> values{};
        for (std::size_t i = 0; i < 3; ++i) values[i] = ((n.x * t[i].x + n.y * t[i].y) + n.z * t[i].z) + d;
        return values;
    }
    static bool IsExcluded(const std::array<double, 3>& values) {
        const double q1 = values[0] * values[1];
        const double q2 = values[0] * values[2];
        const bool is_on_plane = std::fabs(q1) < 1e-12 && std::fabs(q2) < 1e-12;
        const bool is_on_one_side = q1 > 0 && q2 > 0;
        return is_on_plane || is_on_one_side;
    }
    static std::size_t LoneVertex(const std::array<double, 3>& v) {
        if (v[0] * v[1] > 0) return 2;
        if (v[0] * v[2] > 0) return 1;
        if (v[1] * v[2] > 0 || v[0] != 0) return 0;
        return v[1] != 0 ? 1 : 2;
    }
    static std::array<double, 2> IntervalOf(const Corners& t, const std::array<double, 3>& v, int axis) {
        const std::size_t lone = LoneVertex(v);
        const double a = t[lone][axis];
        std::array<double, 2> ends{};
        std::size_t count = 0;
        for (std::size_t other = 0; other < 3; ++other) {
            if (other != lone) ends[count++] = a + (t[other][axis] - a) * v[lone] / (v[lone] - v[other]);
        }
        if (ends[0] > ends[1]) std::swap(ends[0], ends[1]);
        return ends;
    }
};

TEST(TrianglesIntersect, FollowsItsRulesToTheLastBit) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> unit(-1, 1);
    const double odd_values[] = {0.0,   -0.0, 1.0,       -1.0,       1e-6, -1e-6, 1e-9,
                                 1e160, 1e60, kInfinity, -kInfinity, kNaN, 5e-324};
    int true_count = 0;
    for (int i = 0; i < 300000; ++i) {
        const int kind = i % 4;
        const auto coordinate = [&] {
            if (kind == 0) return unit(random);
            if (kind == 1) return std::round(3 * unit(random)) + 1e-13 * std::round(unit(random));
            if (kind == 2) return std::ldexp(unit(random), static_cast<int>(random() % 30) - 20);
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
        const auto random_triangle = [&] {
            test::WholeTriangle2 t;
            do {
                for (auto& vertex : t) vertex = {coordinate(random), coordinate(random)};
            } while (test::TwiceArea(t[0], t[1], t[2]) == 0);
            return t;
        };
        const test::WholeTriangle2 a = random_triangle();
        const test::WholeTriangle2 b = random_triangle();
        const bool expected = test::SharePoint(a, b);
        ++counts[expected ? 1 : 0];
        for (int dropped = 0; dropped < 3; ++dropped) {
            const TriangleData lifted_a = Lifted(a, dropped, i % 3 - 1);
            const TriangleData lifted_b = Lifted(b, dropped, i % 3 - 1);
            for (const auto& order : kOrders) {
                const TriangleData reordered = Reordered(lifted_b, order);
                ASSERT_EQ(CoplanarTrianglesIntersect(Normal(lifted_a), lifted_a, reordered), expected);
                ASSERT_EQ(CoplanarTrianglesIntersect(Normal(lifted_b), reordered, lifted_a), expected);
            }
        }
    }
    EXPECT_GT(counts[0], 1000);
    EXPECT_GT(counts[1], 1000);
}

TEST(CoplanarTrianglesIntersect, DropsTheAxisOfTheNormalsLongestComponent) {
    // Apart only in y: dropping y makes them meet.
    const TriangleData a{0, 0, 0, 4, 1, 2, 0, 0, 4};
    const TriangleData b{1, 9, 1, 5, 8, 2, 1, 9, 5};
    const auto dropping = [&](double nx, double ny, double nz) {
        return CoplanarTrianglesIntersect({nx, ny, nz}, a, b);
    };
    for (const double sign : {1.0, -1.0}) {
        EXPECT_TRUE(dropping(1, sign * 3, 2));
        EXPECT_FALSE(dropping(sign * 3, 1, 2));
        EXPECT_FALSE(dropping(1, 2, sign * 3));
    }
    EXPECT_TRUE(dropping(2, 2, 1)) << "a tie of x and y drops y";
    EXPECT_TRUE(dropping(1, 2, 2)) << "a tie of y and z drops y";
    EXPECT_TRUE(dropping(2, 2, 2));
    EXPECT_FALSE(dropping(2, 1, 2));
    // Dropping x would make these meet, dropping z not.
    const TriangleData c{0, 0, 0, 1, 4, 2, 0, 0, 4};
    const TriangleData d{9, 1, 1, 8, 5, 2, 9, 1, 5};
    EXPECT_TRUE(CoplanarTrianglesIntersect({2, 1, 1}, c, d));
    EXPECT_FALSE(CoplanarTrianglesIntersect({2, 1, 2}, c, d)) << "a tie of x and z drops z";
}

}  // namespace
}  // namespace tarn::details
