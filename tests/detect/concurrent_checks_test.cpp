#include "detect/collision_detector.h"
#include "detect/proximity_detector.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/scene.h"

#include "tarn/factory.h"
#include "tarn/proximity_outcome.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <barrier>
#include <random>
#include <thread>
#include <utility>
#include <vector>

/// Scenes for ThreadSanitizer in the first place: it reports a race that a wrong refresh or update would be,
/// whether or not the answers suffer.

namespace tarn::details {
namespace {

using test::Scene;
using Couples = std::vector<std::pair<ICollisionBody*, ICollisionBody*>>;

constexpr std::size_t kBodies = 40;

Couples InterferingCouples(ICollisionConfiguration& configuration) {
    CollisionResult result;
    CollisionDetector().Check(result, configuration, CheckPolicy::AllInterferences);
    Couples couples;
    for (const CollisionPairResult& pair : result.Pairs) couples.emplace_back(pair.First, pair.Second);
    return couples;
}

// Checks start together on one configuration and on another with the same bodies, all placements still
// pending; hundreds of couples share bodies, so that several threads reach the same stale nodes at once.
TEST(ConcurrentChecks, ApplyPlacementsAndRefreshSharedBodiesOnceBesideReaders) {
    Scene scene;
    ICollisionElement* ball = scene.AddElement(test::BumpyBallMesh(1.5, 10));
    for (std::size_t i = 0; i < kBodies; ++i) scene.AddBody(ball, {});
    scene.Configuration().EnableAllCouples();
    const std::unique_ptr<ICollisionConfiguration> other(scene.Configuration().Clone());
    std::mt19937_64 random(1);
    for (int move = 0; move < 8; ++move) {
        for (const auto& body : scene.Bodies()) body->SetMatrix(test::RandomRigid(random, 5.0));
        constexpr std::size_t kThreads = 4;
        std::vector<Couples> found(kThreads);
        std::barrier start(static_cast<std::ptrdiff_t>(kThreads));
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < kThreads; ++i) {
            threads.emplace_back([&, i] {
                start.arrive_and_wait();
                std::vector<CollisionPair> couples;
                ICollisionBody* const body = scene.Bodies()[3].get();
                EXPECT_EQ(scene.Configuration().RetrieveCouples(couples, body).size(), kBodies - 1);
                found[i] = InterferingCouples(i % 2 == 0 ? scene.Configuration() : *other);
            });
        }
        for (std::thread& thread : threads) thread.join();
        for (const Couples& couples : found) EXPECT_EQ(couples, found[0]);
        EXPECT_EQ(InterferingCouples(scene.Configuration()), found[0]);
        EXPECT_FALSE(found[0].empty());
    }
}

// The same for clearances: the couples of one configuration among themselves, the candidates of a couple, and
// single couples that are measured on other threads all reach the same stale boxes and leaves.
TEST(ConcurrentChecks, MeasureSharedBodiesBesideEachOther) {
    Scene scene;
    ICollisionElement* ball = scene.AddElement(test::BumpyBallMesh(1.5, 8));
    for (std::size_t i = 0; i < 12; ++i) scene.AddBody(ball, {});
    scene.Clearances().ConfigAllCouples({true, 2.5});
    std::mt19937_64 random(2);
    for (int move = 0; move < 6; ++move) {
        for (const auto& body : scene.Bodies()) body->SetMatrix(test::RandomRigid(random, 5.0));
        std::array<ProximityResult, 2> results;
        std::array<double, 2> distances{};
        std::barrier start(4);
        std::vector<std::thread> threads;
        for (const std::size_t i : {0U, 1U}) {
            threads.emplace_back([&, i] {
                start.arrive_and_wait();
                ProximityDetector().Check(results[i], scene.Clearances(),
                                          CheckPolicy::AllInterferencesWithTriangles);
            });
            threads.emplace_back([&, i] {
                start.arrive_and_wait();
                ICollisionBody* const body = scene.Bodies()[i].get();
                for (const auto& other : scene.Bodies())
                    distances[i] += MeasureProximity(body, other.get(), 9.0).distance;
            });
        }
        for (std::thread& thread : threads) thread.join();
        EXPECT_GT(results[0].Pairs.size(), 5U);
        EXPECT_TRUE(std::ranges::equal(results[0].Pairs, results[1].Pairs, {}, &ProximityPairResult::distance,
                                       &ProximityPairResult::distance));
        for (const std::size_t i : {0U, 1U}) {
            for (const auto& other : scene.Bodies())
                distances[i] -= MeasureProximity(scene.Bodies()[i].get(), other.get(), 9.0).distance;
            EXPECT_NEAR(distances[i], 0.0, 1e-12);
        }
    }
}

}  // namespace
}  // namespace tarn::details
