#include "detect/collision_detector.h"

#include "detect/plain_check.h"
#include "support/foreign_classes.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/same_bits.h"
#include "support/scene.h"

#include "tarn/exception.h"
#include "tarn/thread_limit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <typeinfo>

namespace tarn::details {
namespace {

using test::Scene;

constexpr CheckPolicy kPolicies[] = {
    CheckPolicy::FirstInterferenceStop, CheckPolicy::FirstInterferenceStopWithTriangles,
    CheckPolicy::AllInterferences, CheckPolicy::AllInterferencesWithTriangles};

/// The answer to a check whose result holds something before.
CollisionResult CheckOf(Scene& scene, CheckPolicy policy = CheckPolicy::AllInterferencesWithTriangles) {
    CollisionResult result;
    result.Pairs.resize(2);
    result.Triangles.resize(1);
    EXPECT_EQ(&CollisionDetector().Check(result, scene.Configuration(), policy), &result);
    EXPECT_TRUE(result.Triangles.empty());
    EXPECT_EQ(CollisionDetector().Check(scene.Configuration()), result.get_InterferenceDetected());
    return result;
}

bool AreOfOneCouple(const CollisionPairResult& a, const CollisionPairResult& b) {
    return a.First == b.First && a.Second == b.Second;
}

TEST(CollisionDetector, ReportsWhatThePlainRulesFindForEveryPolicyAndThreadCount) {
    for (unsigned seed = 0; seed < 12; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Scene scene;
        std::mt19937_64 random(seed);
        ICollisionElement* const elements[]{scene.AddElement(test::BallMesh(1.0, 6)),
                                            scene.AddElement(test::BoxMesh(-1, -1, -1, 1, 1, 1))};
        for (int i = 0; i < 24; ++i) scene.AddBody(elements[i % 2], test::RandomRigid(random, 4.0));
        scene.Configuration().EnableAllCouples();
        scene.Configuration().UpdateBodies();
        std::vector<CollisionPairResult> expected;
        std::vector<CollisionPair> couples;
        for (const auto& [first, second] : scene.Configuration().RetrieveCouples(couples)) {
            const auto hits =
                test::PlainHits(dynamic_cast<CollisionBody&>(*first), dynamic_cast<CollisionBody&>(*second));
            if (!hits.empty()) expected.push_back({first, second, {hits[0]}});
        }
        ASSERT_GT(expected.size(), 5U);

        for (const std::size_t threads : {1U, 2U, 3U, 8U}) {
            RunWithThreadLimit(threads, [&] {
                for (const CheckPolicy policy : kPolicies) {
                    SCOPED_TRACE(testing::Message() << "policy " << static_cast<int>(policy));
                    const bool stops_early = policy < CheckPolicy::AllInterferences;
                    const bool has_triangles = static_cast<int>(policy) % 2 == 1;
                    const CollisionResult result = CheckOf(scene, policy);
                    // In couple order; the early-stop policies may report any of the couples.
                    std::vector<CollisionPairResult> wanted = expected;
                    if (stops_early) {
                        std::erase_if(wanted, [&result](const CollisionPairResult& pair) {
                            return !AreOfOneCouple(pair, result.Pairs.at(0));
                        });
                    }
                    ASSERT_TRUE(std::ranges::equal(result.Pairs, wanted, AreOfOneCouple));
                    for (std::size_t i = 0; i < wanted.size(); ++i) {
                        ASSERT_EQ(result.Pairs[i].Triangles.size(), has_triangles ? 1U : 0U);
                        ASSERT_TRUE(!has_triangles ||
                                    test::SameBits(result.Pairs[i].Triangles[0], wanted[i].Triangles[0]));
                    }
                    if (!has_triangles) continue;
                    EXPECT_EQ(&result.get_Triangles(), &result.get_Pairs()[0].Triangles);
                }
            });
        }
    }
}

// Each couple keeps a thread busy for long enough that others find their hit meanwhile.
TEST(CollisionDetector, ReportsOneCoupleWhereSeveralThreadsFindOne) {
    Scene scene(32767);
    test::Mesh mesh = test::GridMesh(10, 20);
    mesh.push_back({-2, 0, -9, -2, 0, 9, -2, 3, 0});
    mesh.push_back({-5, 1, -9, -5, 1, 9, -1, 1, 0});
    ICollisionElement* const element = scene.AddElement(mesh);
    for (int i = 0; i < 6; ++i) scene.AddBody(element, test::Translation(0, 0, 0.1 * i));
    scene.Configuration().EnableAllCouples();
    EXPECT_EQ(CheckOf(scene).Pairs.size(), 15U);
    EXPECT_EQ(CheckOf(scene, CheckPolicy::FirstInterferenceStop).Pairs.size(), 1U);
}

// One box inside the other, and one without triangles: overlapping boxes, no intersecting triangle.
TEST(CollisionDetector, FindsNothingWhereNothingInterferes) {
    Scene scene;
    for (const test::Mesh& mesh :
         {test::BoxMesh(0, 0, 0, 9, 9, 9), test::BoxMesh(3, 3, 3, 6, 6, 6), test::Mesh{}}) {
        scene.AddBody(mesh);
        scene.Configuration().EnableAllCouples();
        for (const CheckPolicy policy : kPolicies) EXPECT_TRUE(CheckOf(scene, policy).Pairs.empty());
    }
}

TEST(CollisionDetector, ChecksTheCouplesThatAreEnabledAtTheirNewestPlacements) {
    Scene scene;
    ICollisionElement* box = scene.AddElement(test::BoxMesh(0, 0, 0, 2, 2, 2));
    CollisionBody* a = scene.AddBody(box, {}, 1);
    CollisionBody* b = scene.AddBody(box, test::Translation(1, 0.5, 0.5), 2);
    scene.Configuration().ConfigCouple(b, a, true);
    EXPECT_EQ(CheckOf(scene).Pairs.at(0).get_First(), b);
    EXPECT_EQ(CheckOf(scene).Pairs.at(0).get_Second(), a);
    b->SetMatrix(test::Translation(50, 0, 0));
    EXPECT_TRUE(CheckOf(scene).Pairs.empty());
    // A body with itself.
    CollisionBody* crossing =
        scene.AddBody({{0, 0, 0, 4, 0, 0, 0, 4, 0}, {1, 1, -1, 1, 2, 1, 2, 1, 1}}, {}, 3);
    scene.Configuration().ConfigInterOwners(3, 3, true);
    EXPECT_EQ(CheckOf(scene).Pairs.at(0).First, crossing);
}

TEST(CollisionDetector, BringsPlacementsUpToDateBeforeItRefuses) {
    Scene scene;
    CollisionBody* built = scene.AddBody(test::BoxMesh(0, 0, 0, 1, 1, 1));
    CollisionBody unbuilt(42, 0, "gasket");
    scene.Configuration().AddElement(&unbuilt);
    EXPECT_TRUE(CheckOf(scene).Pairs.empty()) << "no couple reaches the body";
    CollisionResult result;
    result.Pairs.resize(3);
    double x = 0;
    const auto expect_refused = [&](const std::string& part_of_text, const auto& call) {
        std::string text;
        built->SetMatrix(test::Translation(++x, 0, 0));
        try {
            call();
        } catch (const LogicException& error) {
            text = error.displayText();
        }
        EXPECT_NE(text.find(part_of_text), std::string::npos) << text;
        EXPECT_NEAR(built->Hierarchy()->Root().WorldBox().min.x, x, 1e-5);
        EXPECT_EQ(result.Pairs.size(), 3U) << "the result is as it was";
    };
    const auto check = [&](int policy) {
        CollisionDetector().Check(result, scene.Configuration(), static_cast<CheckPolicy>(policy));
    };
    for (const int policy : {4, -1, 1 << 20})
        expect_refused("InvalidArgumentException", [&] { check(policy); });
    const std::string named = "LogicException: Body 'gasket' (id 42)";
    for (const bool comes_first : {true, false}) {
        scene.Configuration().ConfigAllCouples(false);
        scene.Configuration().ConfigCouple(comes_first ? &unbuilt : built, comes_first ? built : &unbuilt,
                                           true);
        expect_refused(named, [&] { CollisionDetector().Check(scene.Configuration()); });
        for (const int policy : {0, 1, 2, 3}) expect_refused(named, [&] { check(policy); });
    }
    std::ostringstream stream;
    expect_refused(named,
                   [&] { CollisionDetector().Dump(scene.Configuration(), DumpType::Triangles, stream); });
    EXPECT_EQ(stream.str(), "") << "nothing is written before the check of all bodies";
}

TEST(CollisionDetector, DumpsAllBodiesAtTheirPlacements) {
    Scene scene;
    const auto dump = [&scene](DumpType type) {
        std::ostringstream stream;
        CollisionDetector().Dump(scene.Configuration(), type, stream);
        return stream.str();
    };
    EXPECT_EQ(dump(DumpType::Triangles), "solid configuration\nendsolid");
    scene.AddBody(test::Mesh{{0, 0, 0, 1, 0, 0, 0, 1, 0}}, test::Translation(0, 0, 5));
    scene.AddBody(test::Mesh{{9, 0, 0, 9, 1, 0, 9, 0, 1}});
    EXPECT_EQ(dump(DumpType::Triangles),
              "solid configuration\n"
              "facet normal 0 0 1\nouter loop\nvertex 0 0 5\nvertex 1 0 5\nvertex 0 1 5\nendloop\nendfacet\n"
              "facet normal 1 0 0\nouter loop\nvertex 9 0 0\nvertex 9 1 0\nvertex 9 0 1\nendloop\nendfacet\n"
              "endsolid");
    EXPECT_NE(dump(DumpType::BoundingBoxes), dump(DumpType::Triangles));
    EXPECT_EQ(dump(DumpType::BoundingBoxes), dump(static_cast<DumpType>(-7)))
        << "any other value means boxes";
}

TEST(CollisionDetector, RefusesConfigurationsThatProvideNoPairs) {
    test::ForeignConfiguration foreign;
    CollisionResult result;
    EXPECT_THROW(CollisionDetector().Check(foreign), std::bad_cast);
    EXPECT_THROW(CollisionDetector().Check(result, foreign, CheckPolicy::AllInterferences), std::bad_cast);
    EXPECT_EQ(foreign.updates, 2);
}

}  // namespace
}  // namespace tarn::details
