#include "core/box.h"

#include "support/same_bits.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarn::details {
namespace {

TEST(TriangleBox, WidensEachFlatAxisByItself) {
    const double above = std::nextafter(1e-7, 1.0);
    for (const auto& [triangle, box] :
         {std::pair(TriangleData{4, -1, 0, 4, 7, 9, 4, 3, -2}, Box{{4 - 1e-6, -1, -2}, {4 + 1e-6, 7, 9}, 0}),
          {{1, 2, 3, 4, 2, 3, 2, 2, 3}, {{1, 2 - 1e-6, 3 - 1e-6}, {4, 2 + 1e-6, 3 + 1e-6}, 0}},
          {{0, 0, 0, 1, 1, 1e-7, 2, 5, 0}, {{0, 0, -1e-6}, {2, 5, 1e-7 + 1e-6}, 0}},
          {{0, 0, 0, 1, 1, above, 2, 5, 0}, {{0, 0, 0}, {2, 5, above}, 0}}})
        EXPECT_TRUE(test::SameBits(TriangleBox(triangle), box)) << box.min.x << ' ' << box.max.z;
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

}  // namespace
}  // namespace tarn::details
