#include "core/collision_body.h"

#include "core/collision_element.h"
#include "support/foreign_classes.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/same_bits.h"

#include "tarn/exception.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <stdexcept>

namespace tarn::details {
namespace {

class CollisionBodyTest : public testing::Test {
protected:
    CollisionElement box_{"box", test::BoxMesh(0, 0, 0, 1, 2, 3)};
    CollisionElement ball_{"ball", test::BallMesh(2, 8)};
    CollisionBody body_{7, 70, "body"};

    double WorldMinX() const { return std::round(body_.Hierarchy()->Root().WorldBox().min.x); }
};

TEST_F(CollisionBodyTest, RebuildsWhenTheLastChangeOfElementsChangedThem) {
    EXPECT_EQ(body_.GetStatistics().leaf_number, 0U) << "nothing is built at first";
    body_.AddElement(&box_);
    body_.SetLeafNumber(4);
    const AABBHierarchy* built = body_.Hierarchy();
    body_.SetLeafNumber(4);
    EXPECT_EQ(body_.Hierarchy(), built) << "nothing changed, nothing is built";

    body_.AddElement(&ball_);
    body_.AddElement(&ball_);
    body_.Rebuild();
    EXPECT_EQ(body_.Hierarchy(), built) << "adding what is there cancels the request to rebuild";
    body_.RemoveElement(&ball_);
    body_.RemoveElement(&ball_);
    body_.Rebuild();
    EXPECT_EQ(body_.Hierarchy(), built) << "so does removing what is not";

    body_.AddElement(&ball_);
    body_.Rebuild();
    EXPECT_EQ(body_.GetStatistics().triangle_count, 12U + ball_.GetTrianglesCount());
    body_.SetLeafNumber(5);
    EXPECT_EQ(body_.GetStatistics().leaf_number, 5U);
}

TEST_F(CollisionBodyTest, GathersElementsInTheOrderInWhichTheyCame) {
    CollisionElement third("third", test::BoxMesh(5, 5, 5, 6, 6, 6));
    for (CollisionElement* element : {&ball_, &box_, &third}) body_.AddElement(element);
    body_.RemoveElement(&ball_);
    EXPECT_FALSE(body_.HasElement(&ball_));
    body_.AddElement(&ball_);
    EXPECT_TRUE(body_.HasElement(&ball_));
    EXPECT_EQ(body_.GetElements(), (std::vector<ICollisionElement*>{&box_, &third, &ball_}));
    body_.SetLeafNumber(32767);
    const auto triangles = body_.Hierarchy()->Root().LocalTriangles();
    EXPECT_TRUE(test::SameBits(triangles[0], box_.Triangles()[0]));
    EXPECT_TRUE(test::SameBits(triangles[12], third.Triangles()[0]));
    EXPECT_TRUE(test::SameBits(triangles[24], ball_.Triangles()[0]));
}

TEST_F(CollisionBodyTest, RefusesBadArgumentsAndStaysAsItWas) {
    body_.AddElement(&box_);
    body_.SetLeafNumber(4);
    const AABBHierarchy* built = body_.Hierarchy();
    for (const std::int16_t number : std::initializer_list<std::int16_t>{0, -3, -32768})
        EXPECT_THROW(body_.SetLeafNumber(number), std::invalid_argument);
    test::ForeignElement foreign;
    EXPECT_THROW(body_.AddElement(nullptr), NullPointerException);
    EXPECT_THROW(body_.RemoveElement(nullptr), NullPointerException);
    EXPECT_THROW(static_cast<void>(body_.HasElement(nullptr)), NullPointerException);
    EXPECT_THROW(body_.AddElement(&foreign), BadCastException);
    body_.RemoveElement(&foreign);
    body_.Rebuild();
    EXPECT_EQ(body_.Hierarchy(), built);
    EXPECT_EQ(body_.GetElements(), (std::vector<ICollisionElement*>{&box_}));
}

TEST_F(CollisionBodyTest, ReportsStatistics) {
    CollisionElement ten("ten", test::Mesh(10, TriangleData{0, 0, 0, 1, 0, 0, 0, 1, 0}));
    body_.AddElement(&ten);
    body_.SetLeafNumber(4);
    // One leaf is taken off the front at each level, so the first child is a leaf.
    EXPECT_TRUE(test::SameBits(body_.GetStatistics(), CollisionBodyStatistics{4, 10, 1, 800}));
}

TEST_F(CollisionBodyTest, AppliesTheLastPlacementAtTheNextUpdate) {
    body_.AddElement(&box_);
    body_.SetLeafNumber(5);
    body_.SetMatrix(test::Translation(100, 0, 0));
    body_.SetMatrix(test::Translation(10, 0, 0));
    EXPECT_EQ(WorldMinX(), 0) << "pending only";
    body_.Update();
    EXPECT_EQ(WorldMinX(), 10);
    body_.SetMatrix(test::Translation(20, 0, 0));
    body_.SetLeafNumber(3);
    body_.Update();
    EXPECT_EQ(WorldMinX(), 20) << "a rebuild forgets no pending placement";
    body_.SetLeafNumber(2);
    EXPECT_EQ(WorldMinX(), 20) << "a new tree starts at the current placement";
}

// Only a placement that differs in some bit makes nodes stale. Staleness shows when the matrix behind the
// tree's back has changed: so the test changes it there.
TEST_F(CollisionBodyTest, ComparesPlacementsBitByBit) {
    body_.AddElement(&box_);
    body_.SetLeafNumber(5);
    double out_of_the_way = 0;
    for (const double y : {7.0, 0.0, -0.0, std::nan("1"), std::nan("2")}) {
        for (const bool is_new : {true, false}) {
            const double before = WorldMinX();
            body_.SetMatrix(test::Translation(1, y, 0));
            body_.Update();
            auto& current = const_cast<MATRIX&>(body_.CurrentMatrix());
            current[3] = out_of_the_way += 1000;
            EXPECT_EQ(WorldMinX() != before, is_new) << y;
            current[3] = 1;
        }
    }
}

}  // namespace
}  // namespace tarn::details
