#include "detect/hierarchy_traversal.h"

#include "detect/crossing_search.h"
#include "detect/plain_check.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/rounds.h"
#include "support/same_bits.h"
#include "support/scene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace tarn::details {
namespace {

using test::Mesh;
using test::Scene;

TriangleHit Hit(CollisionBody& first, CollisionBody& second) {
    first.Update();
    second.Update();
    return FindFirstHit(*first.Hierarchy(), *second.Hierarchy());
}

/// The same first triangle pair as the plain re-telling finds, bit for bit, with and without filters. Returns
/// whether there is one.
bool HitsAsPlain(CollisionBody& first, CollisionBody& second) {
    first.Update();
    second.Update();
    const auto plain = test::PlainHits(first, second);
    for (const auto find : {FindFirstHit, FindFirstHitFast}) {
        SCOPED_TRACE(find == FindFirstHit ? "plain" : "filtered");
        const TriangleHit hit = find(*first.Hierarchy(), *second.Hierarchy());
        EXPECT_EQ(static_cast<bool>(hit), !plain.empty());
        if (!hit || plain.empty()) continue;
        EXPECT_TRUE(test::SameBits<TriangleData>(*hit.first, plain[0].first));
        EXPECT_TRUE(test::SameBits<TriangleData>(*hit.second, plain[0].second));
    }
    EXPECT_EQ(HaveCrossing(*first.Hierarchy(), *second.Hierarchy()), !plain.empty());
    return !plain.empty();
}

Mesh RandomMesh(std::mt19937_64& random) {
    const std::size_t count = 1 + random() % 120;
    switch (random() % 4) {
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

TEST(HierarchyTraversal, FindsTheFirstHitOfThePlainRules) {
    int hits = 0;
    for (unsigned seed = 0; seed < test::Rounds(400); ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937_64 random(seed);
        Scene scene(static_cast<std::int16_t>(1 + random() % 40));
        CollisionBody& first = *scene.AddBody(RandomMesh(random));
        CollisionBody& second = *scene.AddBody(RandomMesh(random));
        for (int move = 0; move < 8; ++move) {
            first.SetMatrix(test::RandomPlacement(random, 4.0));
            if (move % 3 != 0) second.SetMatrix(test::RandomPlacement(random, 4.0));
            hits += HitsAsPlain(first, second) ? 1 : 0;
            HitsAsPlain(second, first);
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
            const bool is_hit = static_cast<bool>(Hit(first, second));
            EXPECT_EQ(is_hit, !test::BruteForceHits(first, second).empty());
            hits += is_hit ? 1 : 0;
        }
    }
    EXPECT_GT(hits, 200);
}

TEST(HierarchyTraversal, SplitsTheFirstOfTwoEqualNodes) {
    // Two bodies of equal boxes that cross in two places. Splitting the first body's root first leads to the
    // crossing of its upper half.
    Scene scene(1);
    CollisionBody& first = *scene.AddBody(Mesh{{0, 0, 0, 1, 0, 0, 0, 1, 1}, {9, 0, 0, 10, 0, 0, 9, 1, 1}});
    CollisionBody& second =
        *scene.AddBody(Mesh{{0, 1, 0, 1, 1, 0, 0.5, 0, 1}, {9, 1, 0, 10, 1, 0, 9.5, 0, 1}});
    ASSERT_EQ(first.Hierarchy()->Root().ExtentSum(), second.Hierarchy()->Root().ExtentSum());
    ASSERT_EQ(test::PlainHits(first, second).size(), 2U);
    EXPECT_TRUE(HitsAsPlain(first, second));
    EXPECT_EQ(Hit(first, second).first->v0x, 9);
}

TEST(HierarchyTraversal, ExcludesEmptyBodiesButNothingThatIsNoNumber) {
    Scene scene;
    CollisionBody& empty = *scene.AddBody(Mesh{});
    CollisionBody& box = *scene.AddBody(test::BoxMesh(-1, -1, -1, 1, 1, 1));
    CollisionBody& far = *scene.AddBody(test::BoxMesh(50, 50, 50, 51, 51, 51));
    MATRIX nowhere;
    for (double& entry : nowhere.m) entry = std::nan("");
    for (const MATRIX& placement : {MATRIX{}, nowhere}) {
        empty.SetMatrix(placement);
        box.SetMatrix(placement);
        EXPECT_FALSE(Hit(empty, box) || Hit(box, empty) || Hit(empty, empty));
        EXPECT_EQ(HitsAsPlain(box, far), std::isnan(placement[0]));
    }
}

// Each triangle lies so far out that the mean falls short of it alone: each split takes one off, the rest
// comes first: a chain of nodes with many pairs pending when the one triangle that reaches through is met.
TEST(HierarchyTraversal, KeepsTheOrderOfManyPendingPairs) {
    for (const int through : {0, 3, 5, 23}) {
        Scene scene(1);
        Mesh mesh;
        for (int i = 0; i < 24; ++i) {
            const double x = -std::ldexp(1, 6 * i);
            mesh.push_back({x, 0, 0, 1.25 * x, 0, 0, x, 1, i == through ? 2.0 : 0.5});
        }
        CollisionBody& chain = *scene.AddBody(mesh);
        CollisionBody& sheet = *scene.AddBody(Mesh{{-1e43, -9, 1, 9, -9, 1, 9, 1e43, 1}});
        EXPECT_TRUE(HitsAsPlain(chain, sheet) && HitsAsPlain(sheet, chain)) << through;
    }
}

TEST(HierarchyTraversal, TestsLargeLeaves) {
    std::mt19937_64 random(5);
    Scene scene(900);
    CollisionBody& first = *scene.AddBody(test::TriangleSoup(random, 900, 10.0, 0.5));
    CollisionBody& second = *scene.AddBody(test::TriangleSoup(random, 301, 10.0, 0.5));
    ASSERT_TRUE(first.Hierarchy()->Root().IsLeaf());
    EXPECT_TRUE(HitsAsPlain(first, second));
}

/// Whether some triangles of two bodies of one leaf each intersect by the triangle test alone.
bool SeemToCross(const CollisionBody& first, const CollisionBody& second) {
    for (const Triangle& a : test::PlainWorldTriangles(first.Hierarchy()->Root(), first.CurrentMatrix())) {
        for (const Triangle& b :
             test::PlainWorldTriangles(second.Hierarchy()->Root(), second.CurrentMatrix()))
            if (TrianglesIntersect(b, PlaneOf(b), a, PlaneOf(a))) return true;
    }
    return false;
}

// By rounding noise the triangle test sees large faces of one plane cross that are far apart. World boxes of
// turned plates overlap all the same. Every other placement is not rigid.
TEST(HierarchyTraversal, LeavesOutWhatIsShownApart) {
    int noise = 0;
    Scene scene;
    CollisionBody& first =
        *scene.AddBody(Mesh{{0, 0, 0, 3000, 0, 0, 0, 3000, 0}, {3000, 3000, 0, 0, 3000, 0, 3000, 0, 0}});
    CollisionBody& second = *scene.AddBody(
        Mesh{{3150, 0, 0, 6150, 0, 0, 3150, 3000, 0}, {6150, 3000, 0, 3150, 3000, 0, 6150, 0, 0}});
    for (unsigned seed = 0; seed < 150; ++seed) {
        std::mt19937_64 random(seed);
        MATRIX placement = test::RandomRigid(random, 50.0);
        if (seed % 2 != 0) placement[1] += 0.5;
        first.SetMatrix(placement);
        second.SetMatrix(placement);
        EXPECT_FALSE(HitsAsPlain(first, second)) << "seed " << seed;
        noise += SeemToCross(first, second) ? 1 : 0;
    }
    EXPECT_GT(noise, 5) << "the plates are no test";
}

}  // namespace
}  // namespace tarn::details
