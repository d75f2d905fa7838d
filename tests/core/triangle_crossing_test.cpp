#include "core/triangle_crossing.h"

#include "core/exact_triangle_test.h"
#include "core/triangle_intersection.h"
#include "support/placements.h"
#include "support/same_bits.h"

#include "tarn/triangle_segments.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <tuple>

namespace tarn::details {
namespace {

using test::SameBits;

constexpr TriangleData kUnit{0, 0, 0, 1, 0, 0, 0, 1, 0};

/// Whether a segment crosses the triangle, and the point that is written, at first -77 throughout.
struct Crossing {
    Vector3 point{-77, -77, -77};
    bool crosses;

    Crossing(const TriangleData& triangle, const Vector3& from, const Vector3& to)
        : crosses(SegmentCrossesTriangle(triangle, from, to, point)) {}
    bool IsUnwritten() const { return SameBits(point, {-77, -77, -77}); }
};

TEST(SegmentCrossesTriangle, IncludesBothEndsUpToTheTolerance) {
    for (const double r : {0.0, 1.0, 0.5, -1e-12, 1.000000000001, -1.1e-12, 1.0 + 1.1e-12, 2.0}) {
        const bool is_on_segment = r >= -1e-12 && r <= 1.000000000001;
        const Crossing found(kUnit, {0.25, 0.25, r}, {0.25, 0.25, r - 1});
        EXPECT_EQ(found.crosses, is_on_segment) << r;
        EXPECT_EQ(found.IsUnwritten(), !is_on_segment) << r;
    }
}

TEST(SegmentCrossesTriangle, IncludesEdgesAndVerticesUpToTheToleranceAndWritesThePointAnyway) {
    for (const auto& [x, y, crosses] : {std::tuple(0.0, 0.0, true),
                                        {1, 0, true},
                                        {0, 1, true},
                                        {-9e-13, 0.5, true},
                                        {0.5, -9e-13, true},
                                        {0.5, 0.5 + 9e-13, true},
                                        {-1.1e-12, 0.5, false},
                                        {0.5, -1.1e-12, false},
                                        {0.5, 0.5 + 1.2e-12, false},
                                        {1 + 1.5e-12, -9e-13, false}}) {
        const Crossing found(kUnit, {x, y, 1}, {x, y, -1});
        EXPECT_EQ(found.crosses, crosses) << x << ' ' << y;
        EXPECT_EQ(LengthSquared(found.point - Vector3{x, y, 0}), 0) << x << ' ' << y;
    }
}

TEST(SegmentCrossesTriangle, RejectsDegenerateTrianglesAndParallelSegments) {
    const auto crosses_sized = [](double size) {
        return Crossing({0, 0, 0, size, 0, 0, 0, size, 0}, {0, 0, 1}, {0, 0, -1}).crosses;
    };
    EXPECT_FALSE(crosses_sized(0.9e-6)) << "the normal's squared length is below 1e-24";
    EXPECT_TRUE(crosses_sized(1.1e-6));
    EXPECT_TRUE(Crossing({0, 0, 0, 1, 0, 0, 2, 0, 0}, {1, 0, 1}, {1, 0, -1}).IsUnwritten());
    const auto crosses_falling_by = [](double height) {
        return Crossing(kUnit, {0.2, 0.2, height / 2}, {0.2, 0.2, -height / 2}).crosses;
    };
    for (const double sign : {1.0, -1.0}) {
        EXPECT_TRUE(crosses_falling_by(sign * 1.2e-5));
        EXPECT_FALSE(crosses_falling_by(sign * 0.8e-5)) << "too flat, however short";
    }
    EXPECT_FALSE(crosses_falling_by(std::nan(""))) << "an unknown parameter lies in no range";
}

TEST(IntersectingSegment, OfACrossLiesOnBothPlanes) {
    const TriangleData a{-4, -4, 0, 4, -4, 0, 0, 8, 0};
    const TriangleData b{0, -2, -3, 0, -2, 3, 0, 3, 0.5};
    std::mt19937_64 random(2);
    for (int i = 0; i < 200; ++i) {
        const MATRIX placement = test::RandomRigid(random, 1e4);
        const auto [is_found, s] = ComputeIntersectingSegment(Place(placement, a), Place(placement, b));
        ASSERT_TRUE(is_found);
        // b passes z = 0 at y = -2 on its first edge and at y = 16 / 7 on its third, both inside a.
        const Vector3 to1 = Vector3{s.P1X, s.P1Y, s.P1Z} - Place(placement, Vector3{0, -2, 0});
        const Vector3 to2 = Vector3{s.P2X, s.P2Y, s.P2Z} - Place(placement, Vector3{0, 16.0 / 7, 0});
        ASSERT_NEAR(LengthSquared(to1) + LengthSquared(to2), 0, 1e-16);
    }
    EXPECT_FALSE(ComputeIntersectingSegment(a, Place(test::Translation(0, 0, 9), b)).first);
    EXPECT_FALSE(ComputeIntersectingSegment(a, a).first);
}

struct Found {
    bool is_found = false;
    Vector3 points[2]{{-77, -77, -77}, {-88, -88, -88}};
};

/// The collection of two points as a list of candidates, the edges of b first: each goes to the first slot
/// until one is found, then to the second until another is.
Found PlainCollection(const TriangleData& a, const TriangleData& b) {
    Found found;
    if (!TrianglesIntersect(a, PlaneOf(a), b, PlaneOf(b))) return found;
    std::size_t count = 0;
    for (std::size_t edge = 0; edge < 6 && count < 2; ++edge) {
        const TriangleData& edges = edge < 3 ? b : a;
        const std::array<Vector3, 3> v{Vertex0(edges), Vertex1(edges), Vertex2(edges)};
        if (SegmentCrossesTriangle(edge < 3 ? a : b, v[edge % 3], v[(edge + 1) % 3], found.points[count]))
            ++count;
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
        // Nearly flat triangles on a lattice: contact, parallel edges and short crossings abound.
        const auto triangle = [&] {
            MATRIX flat{};
            flat[10] = random() % 2 == 0 ? 1.0 : 4e-6;
            return Place(flat, test::DataOf(test::RandomWhole(random, 3)));
        };
        const TriangleData a = triangle();
        const TriangleData b = triangle();
        Found found;
        found.is_found = IntersectingSegment(a, PlaneOf(a), b, PlaneOf(b), found.points[0], found.points[1]);
        const Found expected = PlainCollection(a, b);
        ASSERT_EQ(found.is_found, expected.is_found) << i;
        ASSERT_TRUE(SameBits(found.points, expected.points)) << i;
        found_count += found.is_found ? 1 : 0;
        half_found_count += !found.is_found && found.points[1].x != -88 ? 1 : 0;
    }
    EXPECT_GT(found_count, 1000);
    EXPECT_GT(half_found_count, 10);
}

TEST(CentroidSegment, JoinsTheCentroids) {
    const auto third = [](double c0, double c1, double c2) { return ((c0 + c1) + c2) * 0.3333333333333333; };
    const SegmentData segment = ComputeCentroidSegment({0.1, 7, -3, 0.7, 1e9, 2, 11, -5, 4.3}, kUnit);
    EXPECT_TRUE(SameBits(segment, {third(0.1, 0.7, 11), third(7, 1e9, -5), third(-3, 2, 4.3), third(0, 1, 0),
                                   third(0, 0, 1), 0}));
}

}  // namespace
}  // namespace tarn::details
