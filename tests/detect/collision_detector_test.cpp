#include "detect/collision_detector.h"

#include "detect/plain_check.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/scene.h"

#include "tarn/exception.h"
#include "tarn/factory.h"
#include "tarn/thread_limit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <sstream>
#include <typeinfo>

namespace tarn::details {
namespace {

using test::Scene;

constexpr CheckPolicy kPolicies[] = {
    CheckPolicy::FirstInterferenceStop, CheckPolicy::FirstInterferenceStopWithTriangles,
    CheckPolicy::AllInterferences, CheckPolicy::AllInterferencesWithTriangles};

CollisionResult CheckOf(Scene& scene, CheckPolicy policy) {
    CollisionResult result;
    CollisionDetector detector;
    EXPECT_EQ(&detector.Check(result, scene.Configuration(), policy), &result);
    return result;
}

bool SameBits(const TriangleData& a, const TriangleData& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/// Balls and boxes strewn so that some cross.
void Strew(Scene& scene, unsigned seed, std::size_t count) {
    std::mt19937_64 random(seed);
    ICollisionElement* ball = scene.AddElement(test::BallMesh(1.0, 6));
    ICollisionElement* box = scene.AddElement(test::BoxMesh(-1, -1, -1, 1, 1, 1));
    for (std::size_t i = 0; i < count; ++i)
        scene.AddBody(i % 2 == 0 ? ball : box, test::RandomRigid(random, 4.0));
    scene.Configuration().EnableAllCouples();
}

TEST(CollisionDetector, ReportsWhatThePlainRulesFindForEveryPolicyAndThreadCount) {
    for (unsigned seed = 0; seed < 12; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Scene scene;
        Strew(scene, seed, 24);
        scene.Configuration().UpdateBodies();
        struct Expected {
            CollisionPair couple;
            test::PlainHit hit;
        };
        std::vector<Expected> expected;
        std::vector<CollisionPair> couples;
        for (const CollisionPair& couple : scene.Configuration().RetrieveCouples(couples)) {
            const auto hits = test::PlainHits(dynamic_cast<CollisionBody&>(*couple.First),
                                              dynamic_cast<CollisionBody&>(*couple.Second));
            if (!hits.empty()) expected.push_back({couple, hits[0]});
        }
        ASSERT_GT(expected.size(), 5U);

        for (const std::size_t threads : {1U, 2U, 3U, 8U}) {
            RunWithThreadLimit(threads, [&] {
                EXPECT_TRUE(CollisionDetector().Check(scene.Configuration()));
                for (const CheckPolicy policy : kPolicies) {
                    SCOPED_TRACE(testing::Message() << "policy " << static_cast<int>(policy));
                    const bool stops_early = policy < CheckPolicy::AllInterferences;
                    const bool has_triangles = static_cast<int>(policy) % 2 == 1;
                    const CollisionResult result = CheckOf(scene, policy);
                    EXPECT_TRUE(result.get_InterferenceDetected());
                    EXPECT_TRUE(result.Triangles.empty());
                    ASSERT_EQ(result.Pairs.size(), stops_early ? 1U : expected.size());
                    std::size_t at = 0;
                    for (const CollisionPairResult& pair : result.Pairs) {
                        // In couple order; the early-stop policies may report any of the couples.
                        while (at < expected.size() && (expected[at].couple.First != pair.First ||
                                                        expected[at].couple.Second != pair.Second)) {
                            ASSERT_TRUE(stops_early);
                            ++at;
                        }
                        ASSERT_LT(at, expected.size());
                        ASSERT_EQ(pair.Triangles.size(), has_triangles ? 1U : 0U);
                        if (has_triangles) {
                            EXPECT_TRUE(SameBits(pair.Triangles[0].first, expected[at].hit.first));
                            EXPECT_TRUE(SameBits(pair.Triangles[0].second, expected[at].hit.second));
                        }
                        ++at;
                    }
                }
            });
        }
    }
}

TEST(CollisionDetector, FindsNothingWhereNothingInterferes) {
    Scene scene;
    for (const CheckPolicy policy : kPolicies) EXPECT_TRUE(CheckOf(scene, policy).Pairs.empty());
    EXPECT_FALSE(CollisionDetector().Check(scene.Configuration()));
    // One box inside the other, and one without triangles: overlapping boxes, no intersecting triangle.
    scene.AddBody(test::BoxMesh(0, 0, 0, 9, 9, 9));
    scene.AddBody(test::BoxMesh(3, 3, 3, 6, 6, 6));
    scene.AddBody(test::Mesh{});
    scene.Configuration().EnableAllCouples();
    for (const CheckPolicy policy : kPolicies) EXPECT_TRUE(CheckOf(scene, policy).Pairs.empty());
    EXPECT_FALSE(CollisionDetector().Check(scene.Configuration()));
}

TEST(CollisionDetector, ChecksTheCouplesThatAreEnabledAtTheirNewestPlacements) {
    Scene scene;
    ICollisionElement* box = scene.AddElement(test::BoxMesh(0, 0, 0, 2, 2, 2));
    CollisionBody* a = scene.AddBody(box, {}, 1);
    CollisionBody* b = scene.AddBody(box, test::Translation(1, 0.5, 0.5), 1);
    CollisionBody* c = scene.AddBody(box, test::Translation(0.5, 1, 0.25), 2);
    scene.Configuration().ConfigCouple(c, a, true);
    CollisionResult result = CheckOf(scene, CheckPolicy::AllInterferences);
    ASSERT_EQ(result.Pairs.size(), 1U);
    EXPECT_EQ(result.Pairs[0].get_First(), c);
    EXPECT_EQ(result.Pairs[0].get_Second(), a);

    c->SetMatrix(test::Translation(50, 0, 0));
    EXPECT_TRUE(CheckOf(scene, CheckPolicy::AllInterferences).Pairs.empty());
    scene.Configuration().ConfigIntraOwner(1, true);
    result = CheckOf(scene, CheckPolicy::AllInterferencesWithTriangles);
    ASSERT_EQ(result.Pairs.size(), 1U);
    EXPECT_EQ(result.Pairs[0].First, a);
    EXPECT_EQ(result.Pairs[0].Second, b);
    EXPECT_EQ(&result.get_Triangles(), &result.get_Pairs()[0].Triangles);
}

TEST(CollisionDetector, ChecksACoupleOfABodyWithItself) {
    Scene scene;
    test::Mesh crossing{{0, 0, 0, 4, 0, 0, 0, 4, 0}, {1, 1, -1, 1, 2, 1, 2, 1, 1}};
    CollisionBody* body = scene.AddBody(crossing, {}, 3);
    scene.Configuration().ConfigInterOwners(3, 3, true);
    const CollisionResult result = CheckOf(scene, CheckPolicy::AllInterferencesWithTriangles);
    ASSERT_EQ(result.Pairs.size(), 1U);
    EXPECT_EQ(result.Pairs[0].First, body);
    EXPECT_EQ(result.Pairs[0].Second, body);
}

TEST(CollisionDetector, BringsPlacementsUpToDateBeforeItRefusesAPolicy) {
    Scene scene;
    CollisionBody* body = scene.AddBody(test::BoxMesh(0, 0, 0, 1, 1, 1));
    CollisionResult result;
    result.Pairs.resize(3);
    body->SetMatrix(test::Translation(7, 0, 0));
    for (const int policy : {4, -1, 1 << 20}) {
        EXPECT_THROW(
            CollisionDetector().Check(result, scene.Configuration(), static_cast<CheckPolicy>(policy)),
            InvalidArgumentException);
    }
    EXPECT_EQ(result.Pairs.size(), 3U) << "the result is as it was";
    EXPECT_NEAR(body->Hierarchy()->Root().WorldBox().min.x, 7, 1e-5);
}

TEST(CollisionDetector, NamesTheBodyThatWasNeverBuilt) {
    Scene scene;
    CollisionBody* built = scene.AddBody(test::BoxMesh(0, 0, 0, 1, 1, 1));
    CollisionBody unbuilt(42, 0, "gasket");
    scene.Configuration().AddElement(&unbuilt);
    CollisionResult result;
    result.Pairs.resize(2);
    std::ostringstream stream;
    EXPECT_FALSE(CollisionDetector().Check(scene.Configuration())) << "no couple reaches the body";
    built->SetMatrix(test::Translation(1, 0, 0));
    scene.Configuration().EnableAllCouples();

    const auto expect_named = [](const auto& call) {
        try {
            call();
            FAIL() << "nothing was thrown";
        } catch (const LogicException& error) {
            EXPECT_NE(error.message().find("gasket"), std::string::npos) << error.displayText();
            EXPECT_NE(error.message().find("42"), std::string::npos) << error.displayText();
        }
    };
    expect_named([&] { CollisionDetector().Check(scene.Configuration()); });
    for (const CheckPolicy policy : kPolicies) {
        expect_named([&] { CollisionDetector().Check(result, scene.Configuration(), policy); });
    }
    expect_named([&] { CollisionDetector().Dump(scene.Configuration(), DumpType::Triangles, stream); });
    EXPECT_EQ(result.Pairs.size(), 2U);
    EXPECT_EQ(stream.str(), "") << "nothing is written before the check of all bodies";
    EXPECT_NEAR(built->Hierarchy()->Root().WorldBox().min.x, 1, 1e-5) << "placements are applied first";
}

TEST(CollisionDetector, DumpsAllBodiesAtTheirPlacements) {
    Scene scene;
    CollisionDetector detector;
    std::ostringstream stream;
    detector.Dump(scene.Configuration(), DumpType::Triangles, stream);
    EXPECT_EQ(stream.str(), "solid configuration\nendsolid");

    scene.AddBody(test::Mesh{{0, 0, 0, 1, 0, 0, 0, 1, 0}}, test::Translation(0, 0, 5));
    scene.AddBody(test::Mesh{{9, 0, 0, 9, 1, 0, 9, 0, 1}});
    stream.str("");
    detector.Dump(scene.Configuration(), DumpType::Triangles, stream);
    EXPECT_EQ(stream.str(),
              "solid configuration\n"
              "facet normal 0 0 1\nouter loop\nvertex 0 0 5\nvertex 1 0 5\nvertex 0 1 5\nendloop\nendfacet\n"
              "facet normal 1 0 0\nouter loop\nvertex 9 0 0\nvertex 9 1 0\nvertex 9 0 1\nendloop\nendfacet\n"
              "endsolid");
    std::ostringstream boxes;
    std::ostringstream other;
    detector.Dump(scene.Configuration(), DumpType::BoundingBoxes, boxes);
    detector.Dump(scene.Configuration(), static_cast<DumpType>(-7), other);
    EXPECT_NE(boxes.str(), stream.str());
    EXPECT_EQ(boxes.str(), other.str()) << "any other value means boxes";
}

/// A configuration of a foreign class that is no pair provider.
class ForeignConfiguration final : public ICollisionConfiguration {
public:
    int updates = 0;

    void AddElement(ICollisionBody*, bool) override {}
    void AddElement(ICollisionBody*) override {}
    bool RemoveElement(ICollisionBody*) override { return false; }
    void RemoveAllElements() override {}
    void EnableAllCouples() override {}
    std::vector<std::uint64_t> RetrieveOwners() const override { return {}; }
    void ConfigCouple(ICollisionBody*, ICollisionBody*, bool) override {}
    void ConfigElementAgainstAll(ICollisionBody*, bool) override {}
    void ConfigAllCouples(bool) override {}
    void ConfigIntraOwner(std::uint64_t, bool) override {}
    void ConfigInterOwners(std::uint64_t, std::uint64_t, bool) override {}
    bool CoupleIsEnable(ICollisionBody*, ICollisionBody*) const override { return false; }
    std::vector<ICollisionBody*> RetrieveElements() const override { return {}; }
    std::uint64_t RetrieveCouplesCount() const override { return 0; }
    std::vector<CollisionPair>& RetrieveCouples(std::vector<CollisionPair>& out) const override {
        return out;
    }
    std::vector<CollisionPair>& RetrieveCouples(std::vector<CollisionPair>& out,
                                                ICollisionBody*) const override {
        return out;
    }
    ICollisionConfiguration* Clone() const override { return nullptr; }
    void MergeConfiguration(ICollisionConfiguration*, bool, int) override {}
    void AppendDistinctConfiguration(ICollisionConfiguration*, int) override {}
    void UpdateBodies() override { ++updates; }
};

TEST(CollisionDetector, RefusesConfigurationsThatProvideNoPairs) {
    ForeignConfiguration foreign;
    CollisionResult result;
    EXPECT_THROW(CollisionDetector().Check(foreign), std::bad_cast);
    EXPECT_THROW(CollisionDetector().Check(result, foreign, CheckPolicy::AllInterferences), std::bad_cast);
    EXPECT_EQ(foreign.updates, 2);
}

}  // namespace
}  // namespace tarn::details
