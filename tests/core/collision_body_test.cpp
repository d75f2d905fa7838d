#include "core/collision_body.h"

#include "core/collision_element.h"
#include "support/meshes.h"
#include "support/placements.h"

#include "tarn/exception.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <stdexcept>

namespace tarn::details {
namespace {

class ForeignElement final : public ICollisionElement {
public:
    bool GetFlag() const override { return false; }
    std::vector<TriangleData> GetTriangles() const override { return {}; }
    std::uint64_t GetTrianglesCount() const override { return 0; }
    std::string GetName() const override { return "foreign"; }
};

class CollisionBodyTest : public testing::Test {
protected:
    CollisionElement box_{"box", test::BoxMesh(0, 0, 0, 1, 2, 3)};
    CollisionElement ball_{"ball", test::BallMesh(2, 8)};
    CollisionBody body_{7, 70, "body"};

    std::uint64_t TriangleCount() const { return body_.GetStatistics().triangle_count; }
};

TEST_F(CollisionBodyTest, RebuildsWhenTheLastChangeOfElementsChangedThem) {
    EXPECT_EQ(body_.GetStatistics().leaf_number, 0U) << "nothing is built at first";
    body_.AddElement(&box_);
    body_.SetLeafNumber(4);
    EXPECT_EQ(TriangleCount(), 12U);
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
    EXPECT_EQ(TriangleCount(), 12U + ball_.GetTrianglesCount());
    body_.SetLeafNumber(5);
    EXPECT_EQ(body_.GetStatistics().leaf_number, 5U);
}

TEST_F(CollisionBodyTest, GathersElementsInTheOrderInWhichTheyCame) {
    CollisionElement third("third", test::BoxMesh(5, 5, 5, 6, 6, 6));
    for (CollisionElement* element : {&ball_, &box_, &third}) body_.AddElement(element);
    body_.RemoveElement(&ball_);
    body_.AddElement(&ball_);
    EXPECT_EQ(body_.GetElements(), (std::vector<ICollisionElement*>{&box_, &third, &ball_}));
    body_.SetLeafNumber(32767);
    const auto triangles = body_.Hierarchy()->Root().LocalTriangles();
    EXPECT_EQ(triangles[0].v0x, box_.Triangles()[0].v0x);
    EXPECT_EQ(triangles[12].v0x, third.Triangles()[0].v0x);
    EXPECT_EQ(triangles[24].v0z, ball_.Triangles()[0].v0z);
    EXPECT_TRUE(body_.HasElement(&third));
    body_.RemoveElement(&third);
    EXPECT_FALSE(body_.HasElement(&third));
}

TEST_F(CollisionBodyTest, RefusesBadArgumentsAndStaysAsItWas) {
    body_.AddElement(&box_);
    body_.SetLeafNumber(4);
    const AABBHierarchy* built = body_.Hierarchy();
    for (const std::int16_t number : std::initializer_list<std::int16_t>{0, -3, -32768}) {
        try {
            body_.SetLeafNumber(number);
            FAIL() << number;
        } catch (const std::invalid_argument& error) {
            EXPECT_STREQ(error.what(), "Leaf number can't be negative or zero");
        }
    }
    ForeignElement foreign;
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
    const CollisionBodyStatistics statistics = body_.GetStatistics();
    EXPECT_EQ(statistics.leaf_number, 4U);
    EXPECT_EQ(statistics.triangle_count, 10U);
    EXPECT_EQ(statistics.storage_estimate, 800U);
    EXPECT_EQ(statistics.depth, 1U) << "one leaf is taken off the front at each level";
}

TEST_F(CollisionBodyTest, AppliesTheLastPlacementAtTheNextUpdate) {
    body_.AddElement(&box_);
    body_.SetLeafNumber(5);
    const auto world_min_x = [this] { return body_.Hierarchy()->Root().WorldBox().min.x; };
    body_.SetMatrix(test::Translation(100, 0, 0));
    body_.SetMatrix(test::Translation(10, 0, 0));
    EXPECT_NEAR(world_min_x(), 0, 1e-5) << "pending only";
    body_.Update();
    EXPECT_NEAR(world_min_x(), 10, 1e-5);
    body_.Update();
    EXPECT_NEAR(world_min_x(), 10, 1e-5);

    body_.SetMatrix(test::Translation(20, 0, 0));
    body_.SetLeafNumber(3);
    body_.Update();
    EXPECT_NEAR(world_min_x(), 20, 1e-5) << "a rebuild forgets no pending placement";
    body_.SetLeafNumber(2);
    EXPECT_NEAR(world_min_x(), 20, 1e-5) << "a new tree starts at the current placement";
}

// Only a placement that differs in some bit makes nodes stale. Staleness shows when the matrix behind the
// tree's back has changed: so the test changes it there.
TEST_F(CollisionBodyTest, ComparesPlacementsBitByBit) {
    body_.AddElement(&box_);
    body_.SetLeafNumber(5);
    double out_of_the_way = 0;
    const auto makes_stale = [&, this](const MATRIX& next) {
        const double before = body_.Hierarchy()->Root().WorldBox().min.x;
        body_.SetMatrix(next);
        body_.Update();
        auto& current = const_cast<MATRIX&>(body_.CurrentMatrix());
        current[3] = out_of_the_way += 1000;
        const bool is_stale = body_.Hierarchy()->Root().WorldBox().min.x != before;
        current = next;
        return is_stale;
    };
    EXPECT_TRUE(makes_stale(test::Translation(1, 0, 0)));
    EXPECT_FALSE(makes_stale(test::Translation(1, 0, 0)));
    EXPECT_TRUE(makes_stale(test::Translation(1, -0.0, 0)));
    EXPECT_FALSE(makes_stale(test::Translation(1, -0.0, 0)));
    EXPECT_TRUE(makes_stale(test::Translation(1, std::nan("1"), 0)));
    EXPECT_FALSE(makes_stale(test::Translation(1, std::nan("1"), 0)));
    EXPECT_TRUE(makes_stale(test::Translation(1, std::nan("2"), 0)));
}

}  // namespace
}  // namespace tarn::details
