#include "core/box.h"

#include "support/placements.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace tarn::details {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Box BoxOf(const Vector3& min, const Vector3& max) {
    Box box{min, max, 0.0};
    box.extent_sum = ExtentSum(box);
    return box;
}

void ExpectBounds(const Box& box, const Vector3& min, const Vector3& max) {
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(box.min[axis], min[axis]) << "axis " << axis;
        EXPECT_EQ(box.max[axis], max[axis]) << "axis " << axis;
    }
}

TEST(TriangleBox, WidensEachFlatAxisByItself) {
    ExpectBounds(TriangleBox({0, 0, 5, 2, 0, 5, 0, 3, 5}), {0, 0, 5 - 1e-6}, {2, 3, 5 + 1e-6});
    ExpectBounds(TriangleBox({4, -1, 0, 4, 7, 9, 4, 3, -2}), {4 - 1e-6, -1, -2}, {4 + 1e-6, 7, 9});
    ExpectBounds(TriangleBox({1, 2, 3, 4, 2, 3, 2, 2, 3}), {1, 2 - 1e-6, 3 - 1e-6}, {4, 2 + 1e-6, 3 + 1e-6});
    const double above = std::nextafter(1e-7, 1.0);
    ExpectBounds(TriangleBox({0, 0, 0, 1, 1, 1e-7, 2, 5, 0}), {0, 0, -1e-6}, {2, 5, 1e-7 + 1e-6});
    ExpectBounds(TriangleBox({0, 0, 0, 1, 1, above, 2, 5, 0}), {0, 0, 0}, {2, 5, above});
}

TEST(Overlap, HoldsUnlessOneBoxLiesStrictlyBeyond) {
    std::mt19937_64 random(1);
    std::uniform_int_distribution<int> coordinate(0, 6);
    const auto interval = [&](double& min, double& max) {
        min = coordinate(random);
        max = min + std::floor(coordinate(random) / 2.0);
    };
    int touching_count = 0;
    for (int i = 0; i < 20000; ++i) {
        SCOPED_TRACE(i);
        Box a{};
        Box b{};
        interval(a.min.x, a.max.x), interval(a.min.y, a.max.y), interval(a.min.z, a.max.z);
        interval(b.min.x, b.max.x), interval(b.min.y, b.max.y), interval(b.min.z, b.max.z);
        // Boxes with whole bounds share a point exactly when they share a lattice point.
        bool share_a_point = true;
        bool share_more = true;
        for (int axis = 0; axis < 3; ++axis) {
            int shared = 0;
            for (int p = 0; p <= 9; ++p) {
                if (a.min[axis] <= p && p <= a.max[axis] && b.min[axis] <= p && p <= b.max[axis]) ++shared;
            }
            share_a_point = share_a_point && shared > 0;
            share_more = share_more && shared > 1;
        }
        if (share_a_point && !share_more) ++touching_count;
        ASSERT_EQ(Overlap(a, b), share_a_point);
        ASSERT_EQ(Overlap(b, a), share_a_point);
    }
    EXPECT_GT(touching_count, 1000);

    const Box a = BoxOf({0, 0, 0}, {1, 1, 1});
    EXPECT_TRUE(Overlap(a, BoxOf({1, 1, 1}, {2, 2, 2}))) << "a shared corner";
    for (int axis = 0; axis < 3; ++axis) {
        const auto along = [axis](double value) {
            return Vector3{axis == 0 ? value : 0.0, axis == 1 ? value : 0.0, axis == 2 ? value : 0.0};
        };
        const double beyond = std::nextafter(1.0, 2.0);
        const Box apart = BoxOf(along(beyond), along(beyond) + Vector3{1, 1, 1});
        EXPECT_FALSE(Overlap(a, apart) || Overlap(apart, a)) << "axis " << axis;
        const Box unknown = BoxOf(along(kNaN), along(kNaN) + Vector3{1, 1, 1});
        EXPECT_TRUE(Overlap(a, unknown) && Overlap(unknown, a)) << "axis " << axis;
    }
}

TEST(PlacedBox, IsTheBoxOfTheMovedBoxWithTheLocalExtentSum) {
    const MATRIX quarter_turn{0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0};
    ExpectBounds(Place(quarter_turn, BoxOf({0, 0, 0}, {2, 1, 1})), {-1, 0, 0}, {0, 2, 1});
    const MATRIX scale{10, 0, 0, 1, 0, -10, 0, 2, 0, 0, 10, 3};
    const Box scaled = Place(scale, BoxOf({0, 0, 0}, {2, 1, 1}));
    ExpectBounds(scaled, {1, -8, 3}, {21, 2, 13});
    EXPECT_EQ(scaled.extent_sum, 4.0);
    EXPECT_TRUE(
        Overlap(Place({kNaN, kNaN, kNaN, kNaN, kNaN, kNaN, kNaN, kNaN, kNaN, kNaN, kNaN, kNaN}, scaled),
                BoxOf({900, 900, 900}, {901, 901, 901})));
}

/// Bit for bit, without any margin: a descent drops a pair of boxes for good.
TEST(PlacedBox, ContainsEveryPlacedTriangle) {
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
    for (int i = 0; i < 50000; ++i) {
        SCOPED_TRACE(i);
        const double size = std::ldexp(1.0, static_cast<int>(random() % 40) - 20);
        const auto c = [&] { return size * coordinate(random) + (random() % 2 == 0 ? 0.0 : 1000.0); };
        const double flat = c();
        const TriangleData triangle{c(), c(), flat, c(), c(), random() % 2 == 0 ? flat : c(), c(), c(), flat};
        const MATRIX placement = test::RandomPlacement(random, 1e4);
        const Box box = Place(placement, TriangleBox(triangle));
        const Triangle placed = Place(placement, triangle);
        for (const Vector3& vertex : {Vertex0(placed), Vertex1(placed), Vertex2(placed)}) {
            for (int axis = 0; axis < 3; ++axis) {
                ASSERT_LE(box.min[axis], vertex[axis]);
                ASSERT_GE(box.max[axis], vertex[axis]);
            }
        }
    }
}

}  // namespace
}  // namespace tarn::details
