#include "detect/hierarchy_traversal.h"

#include "detect/plain_check.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/scene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace tarn::details {
namespace {

using test::Mesh;
using test::Scene;

TriangleHit Hit(const CollisionBody& first, const CollisionBody& second) {
    return FindFirstHit(*first.Hierarchy(), *second.Hierarchy());
}

void ExpectPlainAnswer(CollisionBody& first, CollisionBody& second) {
    first.Update();
    second.Update();
    const std::vector<test::PlainHit> plain = test::PlainHits(first, second);
    const TriangleHit hit = Hit(first, second);
    ASSERT_EQ(static_cast<bool>(hit), !plain.empty());
    if (!hit) return;
    EXPECT_EQ(std::memcmp(hit.first, &plain[0].first, sizeof(Triangle)), 0);
    EXPECT_EQ(std::memcmp(hit.second, &plain[0].second, sizeof(Triangle)), 0);
}

Mesh RandomMesh(std::mt19937_64& random) {
    const std::size_t count = std::uniform_int_distribution<std::size_t>(1, 120)(random);
    switch (std::uniform_int_distribution<int>(0, 3)(random)) {
        case 0:
            return test::TriangleSoup(random, count, 5.0, 2.0);
        case 1:
            return test::LatticeSoup(random, count, 3, 0.5);
        case 2:
            return test::BumpyBallMesh(3.0, 6);
        default:
            return test::BoxMesh(-2, -1, -1, 2, 1, 3);
    }
}

// The same first triangle pair as the plain re-telling finds, bit for bit, under placements of every kind.
TEST(HierarchyTraversal, FindsTheFirstHitOfThePlainRules) {
    int hits = 0;
    for (unsigned seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937_64 random(seed);
        Scene scene(std::uniform_int_distribution<std::int16_t>(1, 40)(random));
        CollisionBody& first = *scene.AddBody(RandomMesh(random));
        CollisionBody& second = *scene.AddBody(RandomMesh(random));
        for (int move = 0; move < 8; ++move) {
            first.SetMatrix(test::RandomPlacement(random, 4.0));
            if (move % 3 != 0) second.SetMatrix(test::RandomPlacement(random, 4.0));
            ASSERT_NO_FATAL_FAILURE(ExpectPlainAnswer(first, second));
            ASSERT_NO_FATAL_FAILURE(ExpectPlainAnswer(second, first));
            hits += Hit(first, second) ? 1 : 0;
        }
    }
    EXPECT_GT(hits, 500) << "the placements hardly meet: the test shows nothing";
}

// Boxes only leave out what does not intersect. Without large coplanar faces: there rounding noise of the
// triangle test makes hits that the boxes exclude.
TEST(HierarchyTraversal, AgreesWithAllTrianglePairs) {
    int hits = 0;
    for (unsigned seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937_64 random(seed);
        Scene scene;
        CollisionBody& first = *scene.AddBody(test::TriangleSoup(random, 60, 3.0, 2.0));
        CollisionBody& second = *scene.AddBody(test::BumpyBallMesh(1.5, 6));
        for (int move = 0; move < 6; ++move) {
            second.SetMatrix(test::RandomPlacement(random, 3.0));
            second.Update();
            const bool interferes = test::BruteForceInterferes(first, second);
            EXPECT_EQ(static_cast<bool>(Hit(first, second)), interferes);
            hits += interferes ? 1 : 0;
        }
    }
    EXPECT_GT(hits, 200);
}

TEST(HierarchyTraversal, TestsLeavesWhoseBoxesOnlyTouch) {
    Scene scene;
    // Two triangles that share the plane x = 1 at one point, the second one's second vertex.
    CollisionBody& wall = *scene.AddBody(Mesh{{1, 0, 0, 1, 9, 0, 1, 0, 9}});
    CollisionBody& needle = *scene.AddBody(Mesh{{0, 2, 2, 1 + 2e-6, 2, 2, 0, 3, 2}});
    EXPECT_TRUE(Hit(wall, needle));
    Scene boxes;
    CollisionBody& left = *boxes.AddBody(test::BoxMesh(0, 0, 0, 1, 1, 1));
    CollisionBody& right = *boxes.AddBody(test::BoxMesh(1, 0.2, 0.2, 2, 0.8, 0.8));
    EXPECT_FALSE(Hit(left, right)) << "coplanar contact is none";
}

TEST(HierarchyTraversal, SplitsTheFirstOfTwoEqualNodes) {
    // Two bodies of equal boxes that cross in two places. Splitting the first body's root first leads to the
    // crossing of its upper half; the plain rules say which.
    Scene scene(1);
    const Mesh mesh{{0, 0, 0, 1, 0, 0, 0, 1, 1}, {9, 0, 0, 10, 0, 0, 9, 1, 1}};
    const Mesh turned{{0, 1, 0, 1, 1, 0, 0.5, 0, 1}, {9, 1, 0, 10, 1, 0, 9.5, 0, 1}};
    CollisionBody& first = *scene.AddBody(mesh);
    CollisionBody& second = *scene.AddBody(turned);
    ASSERT_EQ(first.Hierarchy()->Root().ExtentSum(), second.Hierarchy()->Root().ExtentSum());
    ASSERT_EQ(test::PlainHits(first, second).size(), 2U);
    EXPECT_EQ(Hit(first, second).first->v0x, 9);
    ExpectPlainAnswer(first, second);
}

TEST(HierarchyTraversal, LeavesEmptyBodiesAlone) {
    Scene scene;
    CollisionBody& empty = *scene.AddBody(Mesh{});
    CollisionBody& box = *scene.AddBody(test::BoxMesh(-1, -1, -1, 1, 1, 1));
    for (const double x : {0.0, std::nan("")}) {
        for (CollisionBody* body : {&empty, &box}) {
            body->SetMatrix(test::Translation(x, 0, 0));
            body->Update();
        }
        EXPECT_FALSE(Hit(empty, box));
        EXPECT_FALSE(Hit(box, empty));
        EXPECT_FALSE(Hit(empty, empty));
    }
}

TEST(HierarchyTraversal, NaNPlacementsExcludeNothing) {
    Scene scene;
    CollisionBody& first = *scene.AddBody(test::BoxMesh(0, 0, 0, 1, 1, 1));
    CollisionBody& second = *scene.AddBody(test::BoxMesh(50, 50, 50, 51, 51, 51));
    MATRIX nowhere;
    for (double& entry : nowhere.m) entry = std::numeric_limits<double>::quiet_NaN();
    first.SetMatrix(nowhere);
    ASSERT_NO_FATAL_FAILURE(ExpectPlainAnswer(first, second));
    EXPECT_TRUE(Hit(first, second));
}

// Coinciding triangles make chains of nodes; descending two of them must neither recurse nor forget.
TEST(HierarchyTraversal, DescendsTreesAsDeepAsTheyGet) {
    Scene scene(1);
    const Mesh chain(3000, TriangleData{0, 0, 0, 4, 0, 0, 0, 4, 0});
    CollisionBody& first = *scene.AddBody(chain);
    CollisionBody& second = *scene.AddBody(chain, {1, 0, 0, 0, 0, 0, -1, 0.5, 0, 1, 0, -1});
    first.Update();
    second.Update();
    EXPECT_TRUE(Hit(first, second));
    second.SetMatrix({1, 0, 0, 0, 0, 0, -1, 4.5, 0, 1, 0, -1});
    second.Update();
    EXPECT_FALSE(Hit(first, second));
}

TEST(HierarchyTraversal, PreparesLargeLeavesInParallelWithTheSameAnswer) {
    std::mt19937_64 random(5);
    Scene scene(8000);
    CollisionBody& first = *scene.AddBody(test::TriangleSoup(random, 5000, 40.0, 0.5));
    CollisionBody& second = *scene.AddBody(test::TriangleSoup(random, 300, 40.0, 0.5));
    ASSERT_TRUE(first.Hierarchy()->Root().IsLeaf());
    ASSERT_NO_FATAL_FAILURE(ExpectPlainAnswer(first, second));
}

}  // namespace
}  // namespace tarn::details
