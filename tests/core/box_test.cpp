#include "core/box.h"

#include <gtest/gtest.h>

#include <cmath>

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

TEST(Overlap, HoldsUnlessOneBoxLiesStrictlyBeyondAndNaNExcludesNothing) {
    const Box unit{{0, 0, 0}, {1, 1, 1}, 0};
    const double beyond = std::nextafter(1.0, 2.0);
    const double shifts[] = {-2, -beyond, -1, -0.5, 0, 1, beyond, std::nan("")};
    for (const double x : shifts) {
        for (const double y : shifts) {
            for (const double z : shifts) {
                const Box shifted{{x, y, z}, {x + 1, y + 1, z + 1}, 0};
                const bool is_apart = std::fabs(x) > 1 || std::fabs(y) > 1 || std::fabs(z) > 1;
                EXPECT_EQ(Overlap(unit, shifted), !is_apart) << x << ' ' << y << ' ' << z;
                EXPECT_EQ(Overlap(shifted, unit), !is_apart) << x << ' ' << y << ' ' << z;
            }
        }
    }
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
