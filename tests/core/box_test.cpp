#include "core/box.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace tarn::details {
namespace {

void ExpectBounds(const Box& box, const Vector3& min, const Vector3& max) {
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(box.min[axis], min[axis]) << "axis " << axis;
        EXPECT_EQ(box.max[axis], max[axis]) << "axis " << axis;
    }
}

TEST(TriangleBox, WidensEachFlatAxisByItself) {
    ExpectBounds(TriangleBox({4, -1, 0, 4, 7, 9, 4, 3, -2}), {4 - 1e-6, -1, -2}, {4 + 1e-6, 7, 9});
    ExpectBounds(TriangleBox({1, 2, 3, 4, 2, 3, 2, 2, 3}), {1, 2 - 1e-6, 3 - 1e-6}, {4, 2 + 1e-6, 3 + 1e-6});
    const double above = std::nextafter(1e-7, 1.0);
    ExpectBounds(TriangleBox({0, 0, 0, 1, 1, 1e-7, 2, 5, 0}), {0, 0, -1e-6}, {2, 5, 1e-7 + 1e-6});
    ExpectBounds(TriangleBox({0, 0, 0, 1, 1, above, 2, 5, 0}), {0, 0, 0}, {2, 5, above});
}

TEST(Overlap, HoldsUnlessOneBoxLiesStrictlyBeyond) {
    std::mt19937_64 random(1);
    std::uniform_int_distribution<int> coordinate(0, 6);
    int touching_count = 0;
    for (int i = 0; i < 20000; ++i) {
        // Boxes with whole bounds share a point exactly when they share a lattice point.
        double bounds[3][4];
        int fewest_shared = 9;
        for (auto& [a_min, a_max, b_min, b_max] : bounds) {
            a_min = coordinate(random), a_max = a_min + std::floor(coordinate(random) / 2.0);
            b_min = coordinate(random), b_max = b_min + std::floor(coordinate(random) / 2.0);
            int shared = 0;
            for (int p = 0; p <= 9; ++p)
                shared += a_min <= p && p <= a_max && b_min <= p && p <= b_max ? 1 : 0;
            fewest_shared = std::min(fewest_shared, shared);
        }
        const auto& [x, y, z] = bounds;
        const Box a{{x[0], y[0], z[0]}, {x[1], y[1], z[1]}, 0};
        const Box b{{x[2], y[2], z[2]}, {x[3], y[3], z[3]}, 0};
        ASSERT_EQ(Overlap(a, b), fewest_shared > 0) << i;
        ASSERT_EQ(Overlap(b, a), fewest_shared > 0) << i;
        touching_count += fewest_shared == 1 ? 1 : 0;
    }
    EXPECT_GT(touching_count, 1000);
    const double nan = std::nan("");
    const Box unit{{0, 0, 0}, {1, 1, 1}, 0};
    for (const Box& unknown : {Box{{nan, nan, nan}, {nan, nan, nan}, 0}, Box{{nan, 0, 0}, {nan, 1, 1}, 0},
                               Box{{0, nan, 0}, {1, nan, 1}, 0}, Box{{0, 0, nan}, {1, 1, nan}, 0}})
        EXPECT_TRUE(Overlap(unit, unknown) && Overlap(unknown, unit)) << "NaN excludes nothing";
}

TEST(PlacedBox, IsTheBoxOfTheMovedBoxWithTheLocalExtentSum) {
    const Box box{{0, 0, 0}, {2, 1, 1}, 4};
    ExpectBounds(Place({0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0}, box), {-1, 0, 0}, {0, 2, 1});
    const Box scaled = Place({10, 0, 0, 1, 0, -10, 0, 2, 0, 0, 10, 3}, box);
    ExpectBounds(scaled, {1, -8, 3}, {21, 2, 13});
    EXPECT_EQ(scaled.extent_sum, 4.0);
}

}  // namespace
}  // namespace tarn::details
