#include "detect/proximity_detector.h"

#include "detect/collision_detector.h"
#include "detect/plain_proximity.h"
#include "support/foreign_classes.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/same_bits.h"
#include "support/scene.h"

#include "tarn/exception.h"
#include "tarn/proximity_outcome.h"
#include "tarn/thread_limit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace tarn::details {
namespace {

using test::Scene;

constexpr std::array kPolicies{CheckPolicy::FirstInterferenceStop,
                               CheckPolicy::FirstInterferenceStopWithTriangles, CheckPolicy::AllInterferences,
                               CheckPolicy::AllInterferencesWithTriangles};

/// The answer to a check whose result holds something before.
ProximityResult CheckOf(Scene& scene, CheckPolicy policy = CheckPolicy::AllInterferencesWithTriangles) {
    ProximityResult result;
    result.Pairs.resize(2);
    result.Triangles.resize(1);
    EXPECT_EQ(&ProximityDetector().Check(result, scene.Clearances(), policy), &result);
    EXPECT_TRUE(result.Triangles.empty());
    EXPECT_EQ(ProximityDetector().Check(scene.Clearances()), result.get_InterferenceDetected());
    return result;
}

bool AreSame(const ProximityPairResult& a, const ProximityPairResult& b) {
    return a.First == b.First && a.Second == b.Second && test::SameBits(a.Clearance, b.Clearance) &&
           test::SameBits(a.distance, b.distance) && test::SameBits(a.Segment, b.Segment) &&
           a.IntersectionFound == b.IntersectionFound &&
           std::ranges::equal(a.Triangles, b.Triangles, test::SameBits<TriangleDataPair>);
}

bool AreSame(const ProximityPairOutcome& a, const ProximityPairOutcome& b) {
    const auto& [x, y] = std::pair(a.outcome, b.outcome);
    return a.first == b.first && a.second == b.second && test::SameBits(a.clearance, b.clearance) &&
           x.state == y.state && test::SameBits(x.distance, y.distance) &&
           test::SameBits(x.segment, y.segment) && test::SameBits(x.bound, y.bound) &&
           x.retained_count == y.retained_count && x.touches == y.touches && x.is_judged == y.is_judged;
}

/// What the plain search says that the policies with triangles report and the outcomes tell.
struct Expected {
    std::vector<ProximityPairResult> pairs;
    std::vector<ProximityPairOutcome> outcomes;
};

Expected ExpectedOf(Scene& scene) {
    scene.Clearances().UpdateBodies();
    Expected expected;
    std::vector<ProximityPair> couples;
    for (const auto& [first, second, clearance] : scene.Clearances().RetrieveCouples(couples)) {
        const auto [found, triangles, winners] = test::PlainProximity(
            dynamic_cast<CollisionBody&>(*first), dynamic_cast<CollisionBody&>(*second), clearance);
        if (found.state == ProximityState::Intersecting)
            expected.pairs.push_back({first, second, clearance, 0.0, {}, {}, true});
        if (found.state == ProximityState::WithinClearance)
            expected.pairs.push_back(
                {first, second, clearance, found.distance, found.segment, {triangles}, false});
        if (found.state != ProximityState::BeyondClearance || found.touches || !found.is_judged)
            expected.outcomes.push_back({first, second, clearance, found});
    }
    return expected;
}

TEST(ProximityDetector, ReportsWhatThePlainSearchFindsForEveryPolicyAndThreadCount) {
    for (unsigned seed = 0; seed < 4; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Scene scene;
        std::mt19937_64 random(seed);
        ICollisionElement* const grid = scene.AddElement(test::GridMesh(3, 4));
        ICollisionElement* const elements[]{scene.AddElement(test::BallMesh(1.0, 5)),
                                            scene.AddElement(test::BoxMesh(-1, -1, -1, 1, 1, 1))};
        // Two couples that no policy reports: one that touches, one around a common centre.
        scene.AddBody(grid, test::Translation(50, 0, 0));
        scene.AddBody(grid, test::Translation(50, 0, 0.01));
        scene.AddBody(elements[0], test::Translation(90, 0, 0));
        scene.AddBody(elements[1], {3, 0, 0, 90, 0, 3, 0, 0, 0, 0, 3, 0});
        for (int i = 0; i < 16; ++i) scene.AddBody(elements[i % 2], test::RandomRigid(random, 4.0));
        for (const auto& first : scene.Bodies()) {
            for (const auto& second : scene.Bodies()) {
                if (first->GetId() > second->GetId())
                    scene.Clearances().ConfigCouple(first.get(), second.get(),
                                                    {true, 0.25 * static_cast<double>(1 + random() % 8)});
            }
        }
        const Expected expected = ExpectedOf(scene);
        const std::vector<ProximityPairResult>& pairs = expected.pairs;
        ASSERT_GT(std::ranges::count(pairs, true, &ProximityPairResult::IntersectionFound), 3);
        ASSERT_GT(std::ranges::count(pairs, false, &ProximityPairResult::IntersectionFound), 5);
        ASSERT_GE(expected.outcomes.size(), pairs.size() + 2);
        for (const std::size_t threads : {1U, 2U, 8U}) {
            RunWithThreadLimit(threads, [&] {
                for (const CheckPolicy policy : kPolicies) {
                    SCOPED_TRACE(testing::Message() << "policy " << static_cast<int>(policy));
                    const ProximityResult result = CheckOf(scene, policy);
                    std::vector<ProximityPairResult> wanted = pairs;
                    // In couple order; the early-stop policies may report any of the couples.
                    if (policy < CheckPolicy::AllInterferences) {
                        std::erase_if(wanted, [&result](const ProximityPairResult& pair) {
                            return pair.First != result.Pairs.at(0).First ||
                                   pair.Second != result.Pairs[0].Second;
                        });
                    }
                    if (static_cast<int>(policy) % 2 == 0) {
                        for (ProximityPairResult& pair : wanted) pair.Triangles.clear();
                    }
                    ASSERT_TRUE(std::ranges::equal(
                        result.Pairs, wanted,
                        [](const auto& one, const auto& other) { return AreSame(one, other); }));
                    EXPECT_EQ(&result.get_Triangles(), &result.get_Pairs()[0].Triangles);
                }
                const std::vector<ProximityPairOutcome> found = MeasureProximity(scene.Clearances());
                ASSERT_TRUE(std::ranges::equal(
                    found, expected.outcomes,
                    [](const auto& one, const auto& other) { return AreSame(one, other); }));
            });
        }
    }
}

TEST(ProximityDetector, MeasuresAtTheNewestPlacementsWhetherReportedOrNot) {
    Scene scene(1);
    const test::Mesh mesh{{0, 0, 0, 4, 0, 0, 0, 4, 0}};
    CollisionBody* const lower = scene.AddBody(mesh);
    CollisionBody* const upper = scene.AddBody(mesh);
    scene.Clearances().ConfigCouple(upper, lower, {true, 2.0});
    const std::pair<double, ProximityState> kStates[]{{0.01, ProximityState::Touching},
                                                      {1.5, ProximityState::WithinClearance},
                                                      {2.0, ProximityState::WithinClearance},
                                                      {2.5, ProximityState::BeyondClearance}};
    for (const auto& [height, state] : kStates) {
        SCOPED_TRACE(height);
        const bool is_reported = state == ProximityState::WithinClearance;
        const bool is_beyond = state == ProximityState::BeyondClearance;
        // Each of the operations finds the placement pending.
        const auto move = [&, z = height] {
            upper->SetMatrix({});
            upper->Update();
            upper->SetMatrix(test::Translation(0, 0, z));
        };
        move();
        EXPECT_EQ(ProximityDetector().Check(scene.Clearances()), is_reported);
        move();
        const ProximityResult result = CheckOf(scene);
        ASSERT_EQ(result.Pairs.size(), is_reported ? 1U : 0U);
        if (is_reported) {
            const ProximityPairResult& pair = result.Pairs[0];
            EXPECT_EQ(pair.get_First(), upper);
            EXPECT_EQ(pair.get_Second(), lower);
            EXPECT_EQ(pair.get_Clearance(), 2.0);
            EXPECT_DOUBLE_EQ(pair.distance, height);
            EXPECT_DOUBLE_EQ(pair.get_Segment().P1Z, height);
            EXPECT_EQ(pair.get_Segment().P2Z, 0.0);
            EXPECT_EQ(pair.get_Triangles().at(0).first.v1z, height);
        }
        move();
        EXPECT_EQ(MeasureProximity(scene.Clearances()).size(), is_beyond ? 0U : 1U);
        move();
        EXPECT_EQ(MeasureProximity(upper, lower, 2.0).state, state);
        EXPECT_EQ(MeasureProximity(lower, upper, 2.2).state, state)
            << "a clearance of its own, and no couple";
    }
}

TEST(ProximityDetector, BringsPlacementsUpToDateBeforeItRefuses) {
    Scene scene;
    CollisionBody* built = scene.AddBody(test::BoxMesh(0, 0, 0, 1, 1, 1));
    CollisionBody unbuilt(42, 0, "gasket");
    IProximityConfiguration& clearances = scene.Clearances();
    clearances.AddElement(&unbuilt);
    EXPECT_TRUE(CheckOf(scene).Pairs.empty()) << "no couple reaches the body";
    ProximityResult result;
    result.Pairs.resize(3);
    std::ostringstream stream;
    ProximityDetector detector;
    const auto check = [&](int policy) {
        detector.Check(result, clearances, static_cast<CheckPolicy>(policy));
    };
    const std::string invalid = "InvalidArgumentException";
    const std::string named = "LogicException: Body 'gasket' (id 42)";
    const std::pair<std::function<void()>, std::string> calls[]{
        {[&] { check(4); }, invalid},
        {[&] { check(-1); }, invalid},
        {[&] { check(0); }, named},
        {[&] { check(3); }, named},
        {[&] { detector.Check(clearances); }, named},
        {[&] { (void)MeasureProximity(clearances); }, named},
        {[&] { detector.Dump(clearances, DumpType::Triangles, stream); }, named}};
    double x = 0;
    for (const bool comes_first : {true, false}) {
        clearances.ConfigAllCouples({false, 0.0});
        clearances.ConfigCouple(comes_first ? &unbuilt : built, comes_first ? built : &unbuilt, {true, 0.0});
        for (const auto& [call, part_of_text] : calls) {
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
        }
    }
    EXPECT_EQ(stream.str(), "");

    test::ForeignProximityConfiguration foreign;
    EXPECT_THROW(detector.Check(foreign), std::bad_cast);
    EXPECT_THROW(detector.Check(result, foreign, CheckPolicy::AllInterferences), std::bad_cast);
    EXPECT_THROW((void)MeasureProximity(foreign), std::bad_cast);
    EXPECT_EQ(foreign.updates, 3);
    EXPECT_EQ(result.Pairs.size(), 3U);

    test::ForeignBody foreign_body(7);
    for (const bool swaps : {false, true}) {
        const auto measure = [&](ICollisionBody* other) {
            (void)(swaps ? MeasureProximity(other, built, 1.0) : MeasureProximity(built, other, 1.0));
        };
        EXPECT_THROW(measure(nullptr), NullPointerException);
        EXPECT_THROW(measure(&foreign_body), BadCastException);
        EXPECT_THROW(measure(&unbuilt), LogicException);
    }
}

TEST(ProximityDetector, DumpsWhatTheCollisionDetectorDumps) {
    Scene scene;
    scene.AddBody(test::BoxMesh(0, 0, 0, 1, 2, 3), test::Translation(0, 0, 5));
    for (const DumpType type : {DumpType::Triangles, DumpType::BoundingBoxes}) {
        scene.Bodies()[0]->SetMatrix(test::Translation(static_cast<double>(type), 7, 0));
        std::ostringstream dumped;
        ProximityDetector().Dump(scene.Clearances(), type, dumped);
        std::ostringstream expected;
        CollisionDetector().Dump(scene.Configuration(), type, expected);
        EXPECT_EQ(dumped.str(), expected.str());
        EXPECT_GT(dumped.str().size(), 500U);
    }
}

}  // namespace
}  // namespace tarn::details
