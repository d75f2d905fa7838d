#include "core/collision_element.h"

#include "support/meshes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarn::details {
namespace {

TEST(CollisionElement, KeepsTheValidTrianglesInOrder) {
    const TriangleData good{0, 0, 0, 1, 0, 0, 0, 1, 0};
    const TriangleData long_enough{0, 0, 0, 3.2e-4, 0, 0, 0, 1, 0};
    const TriangleData collinear{0, 0, 0, 1, 1, 1, 2, 2, 2};
    const test::Mesh bad{{0, 0, 0, 3.1e-4, 0, 0, 0, 1, 0},  // 9.6e-8 squared
                         {0, 0, 0, 0, 1, 0, 3.1e-4, 0, 0},
                         {0, 1, 0, 0, 0, 0, 3.1e-4, 0, 0},
                         {1, 1, 1, 1, 1, 1, 1, 1, 1},
                         {0, 0, 0, 1, 0, 0, 0, std::nan(""), 0}};
    test::Mesh mesh = bad;
    for (const TriangleData& triangle : {good, long_enough, collinear}) mesh.push_back(triangle);
    const CollisionElement element("part", mesh);
    ASSERT_EQ(element.GetTrianglesCount(), 3U);
    EXPECT_EQ(element.GetTriangles()[0].v1x, 1);
    EXPECT_EQ(element.GetTriangles()[1].v1x, 3.2e-4);
    EXPECT_EQ(element.GetTriangles()[2].v2x, 2);
    EXPECT_FALSE(element.GetFlag());
    EXPECT_TRUE(CollisionElement("none", bad).GetTriangles().empty());

    const Triangle rejected(bad[0]);
    const CollisionElement copy("copy", std::vector<const Triangle*>{element.Triangles().data(), &rejected});
    EXPECT_EQ(copy.GetTrianglesCount(), 1U);
}

}  // namespace
}  // namespace tarn::details
