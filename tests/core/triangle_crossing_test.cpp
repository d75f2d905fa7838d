#include "core/triangle_crossing.h"

#include "core/exact_triangle_test.h"
#include "core/triangle_intersection.h"
#include "support/placements.h"

#include "tarn/triangle_segments.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <utility>

namespace tarn::details {
namespace {

constexpr TriangleData kFloor{-10, -10, 0, 10, -10, 0, 0, 10, 0};

struct Found {
    bool is_found;
    Vector3 first;
    Vector3 second;
};

void ExpectPoint(const Vector3& point, double x, double y, double z) {
    EXPECT_EQ(point.x, x);
    EXPECT_EQ(point.y, y);
    EXPECT_EQ(point.z, z);
}

Found SegmentOf(const TriangleData& a, const TriangleData& b) {
    Found found{false, {-77, -77, -77}, {-88, -88, -88}};
    found.is_found = IntersectingSegment(a, PlaneOf(a), b, PlaneOf(b), found.first, found.second);
    return found;
}

bool CrossesFloor(const Vector3& from, const Vector3& to) {
    Vector3 point{};
    return SegmentCrossesTriangle(kFloor, from, to, point);
}

TEST(SegmentCrossesTriangle, IncludesBothEndsUpToTheTolerance) {
    const auto ends_at = [](double r) { return CrossesFloor({1, 1, r}, {1, 1, r - 1}); };
    for (const double r : {0.0, 1.0, 0.5, -9e-13, 1 + 9e-13, -1e-12, 1.000000000001})
        EXPECT_TRUE(ends_at(r)) << r;
    for (const double r : {-1.1e-12, 1.0 + 1.1e-12, -1e-9, 1.000000001, 2.0}) EXPECT_FALSE(ends_at(r)) << r;
    EXPECT_TRUE(CrossesFloor({1, 1, 5}, {1, 1, 0}));
    EXPECT_TRUE(CrossesFloor({1, 1, 0}, {1, 1, 5}));
}

TEST(SegmentCrossesTriangle, IncludesEdgesAndVerticesUpToTheTolerance) {
    const TriangleData unit{0, 0, 0, 1, 0, 0, 0, 1, 0};
    const auto pierces_at = [&](double x, double y) {
        Vector3 point{};
        const bool crosses = SegmentCrossesTriangle(unit, {x, y, 1}, {x, y, -1}, point);
        ExpectPoint(point, x, y, 0);
        return crosses;
    };
    for (const auto& [x, y] :
         {std::pair{0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}, {0.5, 0.5}, {0.5, 0.0}, {0.0, 0.5}})
        EXPECT_TRUE(pierces_at(x, y)) << x << ' ' << y;
    EXPECT_TRUE(pierces_at(-9e-13, 0.5));
    EXPECT_TRUE(pierces_at(0.5, -9e-13));
    EXPECT_TRUE(pierces_at(0.5, 0.5 + 9e-13));
    EXPECT_FALSE(pierces_at(-1.1e-12, 0.5));
    EXPECT_FALSE(pierces_at(0.5, -1.1e-12));
    EXPECT_FALSE(pierces_at(0.5, 0.5 + 1.2e-12));
    EXPECT_FALSE(pierces_at(1.5, -0.25));
    EXPECT_FALSE(pierces_at(1 + 1.5e-12, -9e-13)) << "each parameter has its own bound";
    EXPECT_FALSE(pierces_at(-0.25, 1.5));
}

TEST(SegmentCrossesTriangle, WritesThePointOnceItIsKnownToLieOnTheSegment) {
    Vector3 point{1, 2, 3};
    EXPECT_FALSE(SegmentCrossesTriangle(kFloor, {50, 0, 1}, {50, 0, -1}, point));
    ExpectPoint(point, 50, 0, 0);
    EXPECT_FALSE(SegmentCrossesTriangle(kFloor, {5, 0, 3}, {5, 0, 1}, point));
    ExpectPoint(point, 50, 0, 0);
}

TEST(SegmentCrossesTriangle, RejectsDegenerateTrianglesAndParallelSegments) {
    EXPECT_TRUE(CrossesFloor({0, 0, 6e-6}, {0, 0, -6e-6}));
    EXPECT_FALSE(CrossesFloor({0, 0, 4e-6}, {0, 0, -4e-6})) << "too flat, however short";
    EXPECT_FALSE(CrossesFloor({-5, 0, 0}, {5, 0, 0}));
    Vector3 point{1, 2, 3};
    const auto crosses_small = [&](double size) {
        return SegmentCrossesTriangle({0, 0, 0, size, 0, 0, 0, size, 0}, {0, 0, 1}, {0, 0, -1}, point);
    };
    EXPECT_FALSE(crosses_small(0.9e-6)) << "the normal's squared length is below 1e-24";
    EXPECT_FALSE(SegmentCrossesTriangle({0, 0, 0, 1, 0, 0, 2, 0, 0}, {1, 0, 1}, {1, 0, -1}, point));
    ExpectPoint(point, 1, 2, 3);
    EXPECT_TRUE(crosses_small(1.1e-6));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(CrossesFloor({0, 0, nan}, {0, 0, -1})) << "an unknown parameter lies in no range";
}

test::WholePoint RandomPoint(std::mt19937_64& random, std::int64_t reach) {
    std::uniform_int_distribution<std::int64_t> coordinate(-reach, reach);
    const std::int64_t x = coordinate(random);
    const std::int64_t y = coordinate(random);
    return {x, y, coordinate(random)};
}

TEST(SegmentCrossesTriangle, AgreesWithExactArithmetic) {
    std::mt19937_64 random(1);
    int crossing_count = 0;
    for (int i = 0; i < 50000; ++i) {
        const test::WholePoint p = RandomPoint(random, 20);
        const test::WholePoint q = RandomPoint(random, 20);
        test::WholeTriangle t;
        for (test::WholePoint& vertex : t) vertex = RandomPoint(random, 20);
        const test::Position exact = test::SegmentAgainst(t, p, q);
        if (exact == test::Position::Undecided) continue;
        const Vector3 from = Vertex0(test::DataOf({p, p, p}));
        const Vector3 to = Vertex0(test::DataOf({q, q, q}));
        const MATRIX placement = test::RandomRigid(random, 1000);
        Vector3 point{};
        ASSERT_EQ(SegmentCrossesTriangle(test::DataOf(t), from, to, point), exact == test::Position::Crossing)
            << i;
        ASSERT_EQ(SegmentCrossesTriangle(Place(placement, test::DataOf(t)), Place(placement, from),
                                         Place(placement, to), point),
                  exact == test::Position::Crossing)
            << i;
        crossing_count += exact == test::Position::Crossing ? 1 : 0;
    }
    EXPECT_GT(crossing_count, 1000);
}

TEST(IntersectingSegment, OfACrossLiesOnBothPlanes) {
    const TriangleData a{-4, -4, 0, 4, -4, 0, 0, 8, 0};
    const TriangleData b{0, -2, -3, 0, -2, 3, 0, 3, 0.5};
    std::mt19937_64 random(2);
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const MATRIX placement = i == 0 ? MATRIX{} : test::RandomRigid(random, 1e4);
        const TriangleData placed_a = Place(placement, a);
        const TriangleData placed_b = Place(placement, b);
        const auto [is_found, segment] = ComputeIntersectingSegment(placed_a, placed_b);
        ASSERT_TRUE(is_found);
        const Vector3 p1{segment.P1X, segment.P1Y, segment.P1Z};
        const Vector3 p2{segment.P2X, segment.P2Y, segment.P2Z};
        for (const TriangleData& triangle : {placed_a, placed_b}) {
            const Plane plane = PlaneOf(triangle);
            const double length = std::sqrt(LengthSquared(plane.normal));
            ASSERT_NEAR(SignedValue(plane, p1) / length, 0.0, 1e-8);
            ASSERT_NEAR(SignedValue(plane, p2) / length, 0.0, 1e-8);
        }
        // b passes z = 0 at y = -2 on its first edge and at y = 16 / 7 on its third, both inside a.
        ASSERT_NEAR(std::sqrt(LengthSquared(p2 - p1)), 2 + 16.0 / 7, 1e-8);
    }
    EXPECT_FALSE(ComputeIntersectingSegment(a, Place(test::Translation(0, 0, 9), b)).first);
    EXPECT_FALSE(ComputeIntersectingSegment(a, a).first);
}

TEST(IntersectingSegment, TakesTheEdgesOfTheSecondTriangleFirst) {
    // One edge of each passes through the other.
    const TriangleData a{-4, -4, 0, 4, -4, 0, 1, 4, 0};
    const TriangleData b{0, 2, -1, 0, 2, 1, 0, 9, 0.25};
    const Found found = SegmentOf(a, b);
    ASSERT_TRUE(found.is_found);
    ExpectPoint(found.first, 0, 2, 0);
    EXPECT_NEAR(found.second.y, 2.4, 1e-12);
    const Found swapped = SegmentOf(b, a);
    ASSERT_TRUE(swapped.is_found);
    EXPECT_NEAR(swapped.first.y, 2.4, 1e-12);
    ExpectPoint(swapped.second, 0, 2, 0);
    // Both points on edges of b, in the order of b's vertices.
    const Found pierced = SegmentOf(kFloor, {0, 0, 2, 2, 0, -2, 4, 0, 2});
    ASSERT_TRUE(pierced.is_found);
    ExpectPoint(pierced.first, 1, 0, 0);
    ExpectPoint(pierced.second, 3, 0, 0);
}

TEST(IntersectingSegment, CountsACrossingAtASharedVertexTwice) {
    const Found found = SegmentOf(kFloor, {0, 1, 3, 1, 2, 0, 2, 1, 4});
    ASSERT_TRUE(found.is_found);
    ExpectPoint(found.first, 1, 2, 0);
    ExpectPoint(found.second, 1, 2, 0);
}

/// The collection of two points as a list of candidates: each goes to the first slot until one is found, then
/// to the second until another is.
Found PlainCollection(const TriangleData& a, const TriangleData& b) {
    Found found{false, {-77, -77, -77}, {-88, -88, -88}};
    if (!TrianglesIntersect(a, PlaneOf(a), b, PlaneOf(b))) return found;
    int count = 0;
    for (int edge = 0; edge < 6; ++edge) {
        const TriangleData& edges = edge < 3 ? b : a;
        const TriangleData& other = edge < 3 ? a : b;
        const std::array<Vector3, 3> v{Vertex0(edges), Vertex1(edges), Vertex2(edges)};
        const auto from = static_cast<std::size_t>(edge % 3);
        Vector3 candidate = count == 0 ? found.first : found.second;
        const bool crosses = SegmentCrossesTriangle(other, v[from], v[(from + 1) % 3], candidate);
        if (count < 2) (count == 0 ? found.first : found.second) = candidate;
        if (crosses && count < 2) ++count;
    }
    found.is_found = count == 2;
    return found;
}

/// Includes what is written when only one point is found: a failed later candidate overwrites the second slot
/// alone.
TEST(IntersectingSegment, LeavesTheSlotsAsTheCandidatesCame) {
    std::mt19937_64 random(3);
    int found_count = 0;
    int half_found_count = 0;
    for (int i = 0; i < 200000; ++i) {
        SCOPED_TRACE(i);
        std::uniform_int_distribution<std::int64_t> height(-1, 1);
        // Nearly flat triangles on a lattice: contact, parallel edges and short crossings abound.
        const auto triangle = [&] {
            test::WholeTriangle t;
            for (test::WholePoint& vertex : t) vertex = RandomPoint(random, 3);
            MATRIX flat{};
            flat[10] = random() % 2 == 0 ? 1.0 : 4e-6;
            return Place(flat, test::DataOf(t));
        };
        const TriangleData a = triangle();
        const TriangleData b = triangle();
        const Found found = SegmentOf(a, b);
        const Found expected = PlainCollection(a, b);
        ASSERT_EQ(found.is_found, expected.is_found);
        for (int axis = 0; axis < 3; ++axis) {
            ASSERT_EQ(found.first[axis], expected.first[axis]);
            ASSERT_EQ(found.second[axis], expected.second[axis]);
        }
        found_count += found.is_found ? 1 : 0;
        half_found_count += !found.is_found && found.second.x != -88 ? 1 : 0;
    }
    EXPECT_GT(found_count, 1000);
    EXPECT_GT(half_found_count, 10);
}

TEST(CentroidSegment, JoinsTheCentroids) {
    const TriangleData t{0.1, 7, -3, 0.7, 1e9, 2, 11, -5, 4.3};
    const SegmentData self = ComputeCentroidSegment(t, t);
    const auto third = [](double c0, double c1, double c2) { return ((c0 + c1) + c2) * 0.3333333333333333; };
    ExpectPoint({self.P1X, self.P1Y, self.P1Z}, third(0.1, 0.7, 11), third(7, 1e9, -5), third(-3, 2, 4.3));
    ExpectPoint({self.P2X, self.P2Y, self.P2Z}, self.P1X, self.P1Y, self.P1Z);
    const SegmentData apart = ComputeCentroidSegment(kFloor, {0, 0, 3, 3, 0, 3, 0, 3, 3});
    EXPECT_EQ(apart.P1Z, 0.0);
    EXPECT_DOUBLE_EQ(apart.P2Z, 3.0);
}

}  // namespace
}  // namespace tarn::details
