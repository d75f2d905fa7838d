#include "core/triangle_distance.h"

#include "support/placements.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <random>

namespace tarn::details {
namespace {

/// The true distances, in wider arithmetic and by other means than the library's: projections and
/// enumeration.
struct Wide {
    long double x;
    long double y;
    long double z;

    Wide(long double px, long double py, long double pz) : x(px), y(py), z(pz) {}
    explicit Wide(const Vector3& v)
        : x(static_cast<long double>(v.x)),
          y(static_cast<long double>(v.y)),
          z(static_cast<long double>(v.z)) {}
};
Wide operator+(const Wide& a, const Wide& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Wide operator-(const Wide& a, const Wide& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Wide operator*(long double f, const Wide& a) {
    return {f * a.x, f * a.y, f * a.z};
}
long double Dot(const Wide& a, const Wide& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
Wide Cross(const Wide& a, const Wide& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

using WideTriangle = std::array<Wide, 3>;

WideTriangle WideOf(const EdgeForm& t) {
    const Wide base(t.base);
    return {base, base + Wide(t.edge0), base + Wide(t.edge1)};
}

long double TrueSquared(const Wide& p, const Wide& a, const Wide& b) {
    const long double length_squared = Dot(b - a, b - a);
    const long double t =
        length_squared > 0 ? std::clamp(Dot(p - a, b - a) / length_squared, 0.0L, 1.0L) : 0.0L;
    const Wide gap = p - (a + t * (b - a));
    return Dot(gap, gap);
}

/// From a point to a triangle: the height over the plane if the foot lies inside, else the nearest edge.
long double TrueSquared(const Wide& p, const WideTriangle& t) {
    const Wide n = Cross(t[1] - t[0], t[2] - t[0]);
    bool is_over_inside = Dot(n, n) > 0;
    long double nearest = TrueSquared(p, t[2], t[0]);
    for (std::size_t i = 0; i < 3; ++i) {
        const Wide& from = t[i];
        const Wide& to = t[(i + 1) % 3];
        is_over_inside = is_over_inside && Dot(Cross(to - from, p - from), n) >= 0;
        nearest = std::min(nearest, TrueSquared(p, from, to));
    }
    if (!is_over_inside) return nearest;
    const long double height = Dot(n, p - t[0]);
    return height * height / Dot(n, n);
}

/// Between two segments: ends against the other segment, and the common perpendicular where its feet are
/// inside.
long double TrueSquared(const Wide& a0, const Wide& a1, const Wide& b0, const Wide& b1) {
    const long double ends = std::min(
        {TrueSquared(a0, b0, b1), TrueSquared(a1, b0, b1), TrueSquared(b0, a0, a1), TrueSquared(b1, a0, a1)});
    const Wide n = Cross(a1 - a0, b1 - b0);
    const long double n_squared = Dot(n, n);
    if (n_squared <= 0) return ends;
    const long double on_a = Dot(Cross(b0 - a0, b1 - b0), n) / n_squared;
    const long double on_b = Dot(Cross(b0 - a0, a1 - a0), n) / n_squared;
    if (on_a < 0 || on_a > 1 || on_b < 0 || on_b > 1) return ends;
    const long double gap = Dot(n, b0 - a0);
    return std::min(ends, gap * gap / n_squared);
}

long double TrueSquared(const Wide& p, const Wide& q, const WideTriangle& t) {
    const Wide n = Cross(t[1] - t[0], t[2] - t[0]);
    const long double height_p = Dot(n, p - t[0]);
    const long double height_q = Dot(n, q - t[0]);
    if (height_p * height_q < 0) {
        const Wide pierced = p + (height_p / (height_p - height_q)) * (q - p);
        if (TrueSquared(pierced, t) < 1e-24L) return 0;
    }
    long double nearest = std::min(TrueSquared(p, t), TrueSquared(q, t));
    for (std::size_t i = 0; i < 3; ++i) nearest = std::min(nearest, TrueSquared(p, q, t[i], t[(i + 1) % 3]));
    return nearest;
}

long double TrueSquared(const WideTriangle& a, const WideTriangle& b) {
    long double nearest = TrueSquared(a[0], b);
    for (std::size_t i = 0; i < 3; ++i) {
        nearest =
            std::min({nearest, TrueSquared(a[i], a[(i + 1) % 3], b), TrueSquared(b[i], b[(i + 1) % 3], a)});
    }
    return nearest;
}

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
        switch (random_() % 4) {
            case 0:
                return {base, edge0, Between(-2, 2) * edge0 + 1e-3 * any};
            case 1:
                return {base, 10 * edge0, 0.05 * any};
            default:
                return {base, edge0, any};
        }
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

TEST(PointSegmentDistance, IsTheTrueOne) {
    RandomShapes shapes(1);
    int inner_count = 0;
    for (int i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        const Vector3 point = shapes.Point(5);
        const Vector3 origin = shapes.Point(5);
        const Vector3 direction = shapes.Point(5);
        const SegmentDistance found = PointSegmentDistance(point, origin, direction);
        const long double expected = TrueSquared(Wide(point), Wide(origin), Wide(origin) + Wide(direction));
        ASSERT_NEAR(found.distance_squared, static_cast<double>(expected),
                    1e-12 * (1 + found.distance_squared));
        ASSERT_NEAR(LengthSquared(point - (origin + found.t * direction)), found.distance_squared, 1e-12);
        ASSERT_TRUE(found.t >= 0 && found.t <= 1);
        inner_count += found.t > 0 && found.t < 1 ? 1 : 0;
    }
    EXPECT_GT(inner_count, 5000);
    const SegmentDistance to_a_point = PointSegmentDistance({3, 4, 0}, {0, 0, 0}, {0, 0, 0});
    EXPECT_EQ(to_a_point.distance_squared, 25.0);
    EXPECT_EQ(to_a_point.t, 1.0) << "no length leaves no way but the end";
}

TEST(PointTriangleDistance, IsTheTrueOneInAllSevenRegions) {
    RandomShapes shapes(2);
    std::array<int, 7> counts{};
    for (int i = 0; i < 60000; ++i) {
        SCOPED_TRACE(i);
        const EdgeForm triangle = shapes.Triangle(1);
        // Around the triangle in its own terms, then off its plane.
        const double u = shapes.Between(-2, 3);
        const double v = shapes.Between(-2, 3);
        const Vector3 point = triangle.PointAt(u, v) + shapes.Between(0, 1) * shapes.Point(0.5);
        const TriangleDistance found = PointTriangleDistance(point, triangle);
        const double rounding = Rounding(point, triangle);
        ASSERT_NEAR(found.distance_squared, static_cast<double>(TrueSquared(Wide(point), WideOf(triangle))),
                    rounding);
        ASSERT_NEAR(found.distance_squared, LengthSquared(point - triangle.PointAt(found.s, found.t)),
                    rounding);
        ASSERT_GE(found.distance_squared, 0.0);
        ExpectInTriangle(found.s, found.t);
        const bool is_beyond = found.s + found.t > 1 - 1e-15;
        const std::size_t region = found.s == 1   ? 0
                                   : found.t == 1 ? 1
                                   : is_beyond    ? 2
                                   : found.s > 0  ? (found.t > 0 ? 3 : 4)
                                                  : (found.t > 0 ? 5 : 6);
        ++counts[region];
    }
    for (const int count : counts) EXPECT_GT(count, 500) << "every vertex, every edge and the inside are met";
}

/// A triangle without area has no regions, and the answer may be too large or not a number; it never claims
/// that the point is nearer than it is. With the least of area it is right.
TEST(PointTriangleDistance, IsNeverBelowTheTrueOneWithoutArea) {
    RandomShapes shapes(3);
    for (int i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        const Vector3 edge = shapes.Point(2);
        const double ratio = i % 5 == 0 ? 0.0 : i % 5 == 1 ? 1.0 : shapes.Between(-3, 3);
        const Vector3 point = shapes.Point(4);
        const EdgeForm flat({0, 0, 0}, edge, ratio * edge);
        const double expected = static_cast<double>(TrueSquared(Wide(point), WideOf(flat)));
        ASSERT_FALSE(PointTriangleDistance(point, flat).distance_squared < expected - 1e-12);
        const EdgeForm sliver({0, 0, 0}, edge, ratio * edge + 1e-4 * shapes.Point(1));
        ASSERT_NEAR(PointTriangleDistance(point, sliver).distance_squared,
                    static_cast<double>(TrueSquared(Wide(point), WideOf(sliver))), 1e-10);
    }
}

/// The alternation as its rules have it, from a given point of the second shape.
template <typename ToFirst, typename ToSecond>
int PlainAlternation(Vector3 current, ToFirst to_first, ToSecond to_second, double& d2) {
    int rounds = 0;
    bool goes_on = true;
    while (goes_on && rounds < 5) {
        ++rounds;
        const auto [d1, on_first] = to_first(current);
        const auto [d, on_second] = to_second(on_first);
        d2 = d;
        current = on_second;
        goes_on = !(std::fabs(d2 - d1) <= 0.01);
    }
    return goes_on ? 6 : rounds;
}

struct Step {
    double distance_squared;
    Vector3 point;
};
Step Towards(const EdgeForm& triangle, const Vector3& point) {
    const TriangleDistance found = PointTriangleDistance(point, triangle);
    return {found.distance_squared, triangle.base + found.s * triangle.edge0 + found.t * triangle.edge1};
}

/// Rounds taken, from 1 to 5; 6 stands for those that the cap ended.
using RoundCounts = std::array<int, 7>;

void ExpectAllRounds(const RoundCounts& counts) {
    for (const std::size_t rounds : {1U, 2U, 3U, 6U}) EXPECT_GT(counts[rounds], 20) << rounds << " rounds";
}

TEST(TrianglePairDistanceBound, IsNoLessThanTheTrueOneAndStopsByItsRules) {
    RandomShapes shapes(4);
    RoundCounts counts{};
    int loose_count = 0;
    for (int i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        const EdgeForm first = shapes.Triangle(i % 2 == 0 ? 3 : 10);
        const EdgeForm second = shapes.Triangle(3);
        const TrianglePairDistance found = TrianglePairDistanceBound(first, second);
        const double rounding = Rounding(first.base, second) + Rounding(second.base, first);
        const auto expected = static_cast<double>(TrueSquared(WideOf(first), WideOf(second)));
        ASSERT_GE(found.distance_squared, expected - rounding);
        loose_count += found.distance_squared > expected + 0.1 ? 1 : 0;
        ExpectInTriangle(found.s1, found.t1);
        ExpectInTriangle(found.s2, found.t2);
        ASSERT_NEAR(LengthSquared(first.PointAt(found.s1, found.t1) - second.PointAt(found.s2, found.t2)),
                    found.distance_squared, rounding);

        double d2 = 0;
        const int rounds = PlainAlternation(
            second.base, [&](const Vector3& p) { return Towards(first, p); },
            [&](const Vector3& p) { return Towards(second, p); }, d2);
        ++counts[static_cast<std::size_t>(rounds)];
        ASSERT_EQ(found.distance_squared, d2);
    }
    ExpectAllRounds(counts);
    EXPECT_GT(loose_count, 20) << "the bound is not meant to be tight";
}

TEST(SegmentTriangleDistanceBound, IsNoLessThanTheTrueOneAndStopsByItsRules) {
    RandomShapes shapes(5);
    RoundCounts counts{};
    int crossing_count = 0;
    int parallel_count = 0;
    for (int i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        const EdgeForm triangle = shapes.Triangle(2);
        const Vector3 m = Cross(triangle.edge0, triangle.edge1);
        const Vector3 direction =
            i % 4 == 0 ? shapes.Between(-2, 2) * triangle.edge0 + shapes.Between(-2, 2) * triangle.edge1
                       : shapes.Point(8);
        const Vector3 origin = i % 4 == 1
                                   ? triangle.PointAt(0.25, 0.25) - shapes.Between(-0.5, 1.5) * direction
                                   : shapes.Point(i % 4 == 2 ? 3 : 12);
        const SegmentTriangleDistance found = SegmentTriangleDistanceBound(origin, direction, triangle);
        const double rounding = Rounding(origin, triangle) + Rounding(origin + direction, triangle);
        const auto expected =
            static_cast<double>(TrueSquared(Wide(origin), Wide(origin) + Wide(direction), WideOf(triangle)));
        ASSERT_GE(found.distance_squared, expected - rounding);
        ExpectInTriangle(found.s, found.t);
        ASSERT_TRUE(found.u >= 0 && found.u <= 1);
        ASSERT_NEAR(LengthSquared(origin + found.u * direction - triangle.PointAt(found.s, found.t)),
                    found.distance_squared, rounding);

        // The line meets the plane where it does from either end, so one formula tells both.
        const double slope = Dot(m, direction);
        const bool is_parallel = std::fabs(slope) <= 0.001;
        const Vector3 start =
            is_parallel ? origin : origin + (Dot(m, triangle.base - origin) / slope) * direction;
        double d2 = 0;
        const int rounds = PlainAlternation(
            start, [&](const Vector3& p) { return Towards(triangle, p); },
            [&](const Vector3& p) {
                const SegmentDistance to_segment = PointSegmentDistance(p, origin, direction);
                return Step{to_segment.distance_squared, origin + to_segment.t * direction};
            },
            d2);
        ++counts[static_cast<std::size_t>(rounds)];
        // The start is unclamped, so its rounding grows with its distance.
        ASSERT_NEAR(found.distance_squared, d2, 1e-4 * rounding * (1e7 + LengthSquared(start - origin)));
        parallel_count += is_parallel ? 1 : 0;
        if (!is_parallel && expected == 0.0) {
            ++crossing_count;
            ASSERT_NEAR(found.distance_squared, 0.0, rounding) << "a crossing is where the search starts";
        }
    }
    ExpectAllRounds(counts);
    EXPECT_GT(crossing_count, 200);
    EXPECT_GT(parallel_count, 2000);
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
