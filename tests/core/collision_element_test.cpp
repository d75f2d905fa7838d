#include "core/collision_element.h"

#include "support/meshes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tarn::details {
namespace {

constexpr TriangleData kGood{0, 0, 0, 1, 0, 0, 0, 1, 0};

TEST(CollisionElement, KeepsTheValidTrianglesInOrder) {
    TriangleData other = kGood;
    other.v2z = 7;
    TriangleData repeated_vertex = kGood;
    repeated_vertex.v1x = 0;
    TriangleData short_edge = kGood;
    short_edge.v1x = 3e-4;  // 9e-8 squared
    TriangleData just_long_enough = kGood;
    just_long_enough.v1x = 3.2e-4;
    const TriangleData collinear{0, 0, 0, 1, 1, 1, 2, 2, 2};
    TriangleData no_number = kGood;
    no_number.v2y = std::nan("");

    const CollisionElement element(
        "part", {kGood, repeated_vertex, other, short_edge, just_long_enough, no_number, collinear});
    ASSERT_EQ(element.GetTrianglesCount(), 4U);
    EXPECT_EQ(element.GetTriangles()[1].v2z, 7);
    EXPECT_EQ(element.GetTriangles()[2].v1x, 3.2e-4);
    EXPECT_EQ(element.GetTriangles()[3].v2x, 2);
    EXPECT_EQ(element.GetName(), "part");
    EXPECT_FALSE(element.GetFlag());

    const Triangle bad(repeated_vertex);
    const CollisionElement copy("copy", std::vector<const Triangle*>{element.Triangles().data(), &bad});
    EXPECT_EQ(copy.GetTrianglesCount(), 1U);
}

TEST(CollisionElement, MayBeEmpty) {
    EXPECT_TRUE(CollisionElement("none", std::vector<TriangleData>{}).GetTriangles().empty());
    const TriangleData point{1, 1, 1, 1, 1, 1, 1, 1, 1};
    EXPECT_EQ(CollisionElement("points", {point, point}).GetTrianglesCount(), 0U);
}

}  // namespace
}  // namespace tarn::details
