#include "core/triangle_distance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <random>

namespace tarn::details {
namespace {

class RandomShapes {
public:
    explicit RandomShapes(unsigned seed) : random_(seed) {}

    double Between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    Vector3 Point(double reach) {
        const double x = Between(-reach, reach);
        const double y = Between(-reach, reach);
        return {x, y, Between(-reach, reach)};
    }
    /// Round ones, needles and slivers, anywhere.
    EdgeForm Triangle(double reach) {
        const Vector3 base = Point(reach);
        const Vector3 edge0 = Point(4);
        const Vector3 any = Point(4);
        const auto kind = random_() % 4;
        if (kind == 0) return {base, edge0, Between(-2, 2) * edge0 + 1e-3 * any};
        if (kind == 1) return {base, 10 * edge0, 0.05 * any};
        return {base, edge0, any};
    }

private:
    std::mt19937_64 random_;
};

/// Rounding of a difference of squares, relative to the squares themselves.
double Rounding(const Vector3& point, const EdgeForm& t) {
    return 1e-11 * (1 + LengthSquared(point - t.base) + LengthSquared(t.edge0) + LengthSquared(t.edge1));
}

void ExpectInTriangle(double s, double t) {
    EXPECT_GE(s, 0.0);
    EXPECT_GE(t, 0.0);
    EXPECT_LE(s + t, 1 + 1e-15);
}

/// A point of a convex shape is the nearest one exactly when no corner lies further towards the outer point.
template <typename... Corner>
double GainOf(const Vector3& outer, const Vector3& nearest, const Corner&... corners) {
    return std::max({Dot(outer - nearest, corners - nearest)...});
}

TEST(PointSegmentDistance, IsTheTrueOne) {
    RandomShapes shapes(1);
    int inner_count = 0;
    for (int i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        const Vector3 point = shapes.Point(5);
        const Vector3 origin = shapes.Point(5);
        const Vector3 direction = shapes.Point(5);
        const auto [distance_squared, t] = PointSegmentDistance(point, origin, direction);
        const Vector3 nearest = origin + t * direction;
        ASSERT_TRUE(t >= 0 && t <= 1);
        ASSERT_NEAR(LengthSquared(point - nearest), distance_squared, 1e-12);
        ASSERT_LE(GainOf(point, nearest, origin, origin + direction), 1e-12);
        inner_count += t > 0 && t < 1 ? 1 : 0;
    }
    EXPECT_GT(inner_count, 5000);
    const auto [to_a_point, t] = PointSegmentDistance({3, 4, 0}, {0, 0, 0}, {0, 0, 0});
    EXPECT_TRUE(to_a_point == 25.0 && t == 1.0) << "no length leaves no way but the end";
}

TEST(PointTriangleDistance, IsTheTrueOneInAllSevenRegions) {
    RandomShapes shapes(2);
    std::array<int, 8> counts{};
    for (int i = 0; i < 60000; ++i) {
        SCOPED_TRACE(i);
        const EdgeForm triangle = shapes.Triangle(1);
        // Around the triangle in its own terms, then off its plane, or not: then rounding goes below 0.
        const double u = shapes.Between(-2, 3);
        const double v = shapes.Between(-2, 3);
        const Vector3 point = triangle.PointAt(u, v) + (i % 4 == 0 ? 0 : 0.5) * shapes.Point(1);
        const auto [distance_squared, s, t] = PointTriangleDistance(point, triangle);
        const double rounding = Rounding(point, triangle);
        const Vector3 nearest = triangle.PointAt(s, t);
        ExpectInTriangle(s, t);
        ASSERT_GE(distance_squared, 0.0);
        ASSERT_NEAR(distance_squared, LengthSquared(point - nearest), rounding);
        ASSERT_LE(
            GainOf(point, nearest, triangle.PointAt(0, 0), triangle.PointAt(1, 0), triangle.PointAt(0, 1)),
            1000 * rounding);
        ++counts[(s > 0 ? 1U : 0U) + (t > 0 ? 2U : 0U) + (s + t > 1 - 1e-15 ? 4U : 0U)];
    }
    for (const std::size_t region : {0U, 1U, 2U, 3U, 5U, 6U, 7U})
        EXPECT_GT(counts[region], 500) << "every vertex, every edge and the inside are met";
}

/// A triangle without area has no regions, and the answer may be too large or not a number; it never claims
/// that the point is nearer than it is.
TEST(PointTriangleDistance, IsNeverBelowTheTrueOneWithoutArea) {
    RandomShapes shapes(3);
    for (int i = 0; i < 20000; ++i) {
        const Vector3 edge = shapes.Point(2);
        const double ratio = i % 5 == 0 ? 0.0 : i % 5 == 1 ? 1.0 : shapes.Between(-3, 3);
        const Vector3 point = shapes.Point(4);
        const EdgeForm flat({0, 0, 0}, edge, ratio * edge);
        const double expected =
            std::min({PointSegmentDistance(point, flat.base, flat.edge0).distance_squared,
                      PointSegmentDistance(point, flat.base, flat.edge1).distance_squared,
                      PointSegmentDistance(point, edge, flat.edge1 - edge).distance_squared});
        ASSERT_FALSE(PointTriangleDistance(point, flat).distance_squared < expected - 1e-12) << i;
    }
}

struct Step {
    double distance_squared;
    Vector3 point;
};

Step Towards(const EdgeForm& triangle, const Vector3& point) {
    const TriangleDistance found = PointTriangleDistance(point, triangle);
    return {found.distance_squared, triangle.PointAt(found.s, found.t)};
}

/// Rounds taken, from 1 to 5; 6 stands for those that the cap ended.
using RoundCounts = std::array<int, 7>;

/// The alternation as its rules have it, from a given point of the second shape. Returns the bound.
template <typename ToFirst, typename ToSecond>
double PlainAlternation(Vector3 current, ToFirst to_first, ToSecond to_second, RoundCounts& counts) {
    for (std::size_t rounds = 1;; ++rounds) {
        const auto [d1, on_first] = to_first(current);
        const auto [d2, on_second] = to_second(on_first);
        const bool is_settled = std::fabs(d2 - d1) <= 0.01;
        if (is_settled || rounds == 5) {
            ++counts[is_settled ? rounds : 6];
            return d2;
        }
        current = on_second;
    }
}

void ExpectAllRounds(const RoundCounts& counts) {
    for (const std::size_t rounds : {1U, 2U, 3U, 6U}) EXPECT_GT(counts[rounds], 20) << rounds << " rounds";
}

// What is found is the distance of two points, one of each shape: so it bounds the true one from above.
TEST(TrianglePairDistanceBound, JoinsTwoPointsAndStopsByItsRules) {
    RandomShapes shapes(4);
    RoundCounts counts{};
    for (int i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        const EdgeForm first = shapes.Triangle(i % 2 == 0 ? 3 : 10);
        const EdgeForm second = shapes.Triangle(3);
        const TrianglePairDistance found = TrianglePairDistanceBound(first, second);
        ExpectInTriangle(found.s1, found.t1);
        ExpectInTriangle(found.s2, found.t2);
        ASSERT_NEAR(LengthSquared(first.PointAt(found.s1, found.t1) - second.PointAt(found.s2, found.t2)),
                    found.distance_squared, Rounding(first.base, second) + Rounding(second.base, first));
        ASSERT_EQ(found.distance_squared,
                  PlainAlternation(
                      second.base, [&](const Vector3& p) { return Towards(first, p); },
                      [&](const Vector3& p) { return Towards(second, p); }, counts));
    }
    ExpectAllRounds(counts);
}

TEST(SegmentTriangleDistanceBound, JoinsTwoPointsAndStopsByItsRules) {
    RandomShapes shapes(5);
    RoundCounts counts{};
    for (int i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        const EdgeForm triangle = shapes.Triangle(2);
        const Vector3 direction =
            i % 4 == 0 ? shapes.Between(-2, 2) * triangle.edge0 + shapes.Between(-2, 2) * triangle.edge1
                       : shapes.Point(8);
        const double pierced_at = shapes.Between(-0.5, 1.5);
        const Vector3 origin = i % 4 == 1 ? triangle.PointAt(0.25, 0.25) - pierced_at * direction
                                          : shapes.Point(i % 4 == 2 ? 3 : 12);
        const auto [distance_squared, u, s, t] = SegmentTriangleDistanceBound(origin, direction, triangle);
        const double rounding = Rounding(origin, triangle) + Rounding(origin + direction, triangle);
        ExpectInTriangle(s, t);
        ASSERT_TRUE(u >= 0 && u <= 1);
        ASSERT_NEAR(LengthSquared(origin + u * direction - triangle.PointAt(s, t)), distance_squared,
                    rounding);

        // The line meets the plane where it does from either end, so one formula tells both.
        const Vector3 m = Cross(triangle.edge0, triangle.edge1);
        const double slope = Dot(m, direction);
        const bool is_parallel = std::fabs(slope) <= 0.001;
        const Vector3 start =
            is_parallel ? origin : origin + (Dot(m, triangle.base - origin) / slope) * direction;
        const double expected = PlainAlternation(
            start, [&](const Vector3& p) { return Towards(triangle, p); },
            [&](const Vector3& p) {
                const SegmentDistance to_segment = PointSegmentDistance(p, origin, direction);
                return Step{to_segment.distance_squared, origin + to_segment.t * direction};
            },
            counts);
        // The start is unclamped, so its rounding grows with its distance.
        ASSERT_NEAR(distance_squared, expected, 1e-11 * (1e7 + LengthSquared(start - origin)));
        if (!is_parallel && i % 4 == 1 && pierced_at >= 0 && pierced_at <= 1) {
            ASSERT_NEAR(distance_squared, 0.0, rounding) << "a crossing is where the search starts";
        }
    }
    ExpectAllRounds(counts);
}

TEST(SegmentTriangleDistanceBound, StartsAtTheOriginUpToTheParallelTolerance) {
    // Pierces the triangle at u = 0.5, falling by the height over its whole length; the triple product is the
    // height. From its origin the search gets no further than the point above the triangle's edge, at u =
    // 0.4.
    const EdgeForm triangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    for (const double sign : {1.0, -1.0}) {
        const auto falling_by = [&](double height) {
            return SegmentTriangleDistanceBound({-1, 0.25, sign * height / 2}, {2.5, 0, -sign * height},
                                                triangle);
        };
        EXPECT_NEAR(falling_by(0.001).u, 0.4, 1e-6);
        EXPECT_NEAR(falling_by(std::nextafter(0.001, 1.0)).u, 0.5, 1e-6);
    }
}

}  // namespace
}  // namespace tarn::details
