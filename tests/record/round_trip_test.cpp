#include "support/owned_scene.h"
#include "support/scene.h"
#include "support/scene_content.h"
#include "tools/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace tarn {
namespace {

using test::ContentOf;
using test::Scene;
using test::SceneContent;

template <typename Configuration>
test::OwnedScene<Configuration> ExpectRoundTrip(Configuration& configuration) {
    const program::TemporaryFolder folder;
    make_unique_recorder()->Store(&configuration, folder.Path("scene.xml"));
    EXPECT_EQ(folder.FileCount(), 1U);
    auto again = test::RetrieveScene<Configuration>(folder.Path("scene.xml"));
    SceneContent expected = ContentOf(configuration);
    const SceneContent found = ContentOf(*again);
    EXPECT_EQ(found.bodies.size(), expected.bodies.size());
    for (std::size_t i = 0; i < std::min(found.bodies.size(), expected.bodies.size()); ++i) {
        // A body that was never built comes back built with a new body's number.
        if (expected.bodies[i].leaf_number == 0) expected.bodies[i].leaf_number = 1;
        EXPECT_TRUE(found.bodies[i] == expected.bodies[i]) << "body " << i << ": " << found.bodies[i].name;
    }
    EXPECT_TRUE(found.couples == expected.couples);

    std::set<std::uint64_t> owners;
    for (const ICollisionBody* body : again->RetrieveElements()) {
        owners.insert(body->GetOwner());
        EXPECT_EQ(body->GetElements().size(), 1U);
        EXPECT_EQ(body->GetElements().at(0)->GetName(), body->GetName());
    }
    const std::vector<std::uint64_t> registered = again->RetrieveOwners();
    EXPECT_EQ(std::set<std::uint64_t>(registered.begin(), registered.end()), owners);
    return again;
}

std::string AllCharacters() {
    std::string name = "\t\n\r\r\n&#65;&lt; ";
    for (int byte = 0x20; byte < 0x100; ++byte) name += static_cast<char>(byte);
    return name;
}

/// Bodies with all that is odd, and couples of both kinds.
struct GeneratedScene : Scene {
    explicit GeneratedScene(std::uint64_t seed) {
        std::mt19937_64 random(seed);
        ICollisionElement* const ball = AddElement(test::BumpyBallMesh(0.1, 12));
        ICollisionElement* const far = AddElement(test::TriangleSoup(random, 300, 1e6, 1e-2));
        ICollisionElement* const huge = AddElement(test::TriangleSoup(random, 300, 1e300, 1e299));
        ICollisionElement* const tiny = AddElement({{0, -0.0, 5e-324, 1, 0, -2.2e-308, 0, 1, 1e-310}});
        Add(0, 0, AllCharacters(), 1, {ball});
        Add(0xffffffffU, 0xffffffffffffffffU, "", 5, {far, ball});
        Add(3, 0x8000000000000000U, "  ", 32767, {huge});
        Add(4, 7, "no elements", 2, {});
        Add(5, 7, "tiny numbers", 2, {tiny});
        Add(6, 8, "not built", 0, {ball});
        const auto any = [&] { return Bodies()[random() % Bodies().size()].get(); };
        using Limits = std::numeric_limits<double>;
        for (const double clearance : {0.0, -0.0, 0.1, Limits::infinity(), Limits::quiet_NaN(),
                                       -Limits::quiet_NaN(), Limits::denorm_min(), Limits::max()}) {
            Clearances().ConfigCouple(any(), any(), {true, clearance});
            Configuration().ConfigCouple(any(), any(), true);
        }
        Configuration().ConfigElementAgainstAll(any(), true);
    }
};

TEST(RoundTrip, KeepsBodiesMeshesAndCouplesToTheLastBit) {
    for (std::uint64_t seed = 1; seed < 6; ++seed) {
        SCOPED_TRACE(seed);
        const GeneratedScene scene(seed);
        ExpectRoundTrip(scene.Configuration());
        ExpectRoundTrip(scene.Clearances());
    }
    ExpectRoundTrip(*make_unique_configuration());
    ExpectRoundTrip(*make_unique_proximity_configuration());
}

TEST(RoundTrip, KeepsBodiesThatShareAnIdentifierAndTheFirstAnswersForCouples) {
    Scene scene;
    for (const char* const name : {"first", "second", "third"})
        scene.Add(name[0] == 't' ? 8 : 7, 1, name, 5, {});
    scene.Configuration().ConfigCouple(scene.Bodies()[1].get(), scene.Bodies()[2].get(), true);
    const auto again = ExpectRoundTrip(scene.Configuration());
    std::vector<CollisionPair> couples;
    ASSERT_EQ(again->RetrieveCouples(couples).size(), 1U);
    EXPECT_EQ(couples[0].First->GetName(), "first");
    EXPECT_EQ(couples[0].Second->GetName(), "third");
}

TEST(RoundTrip, DifferentScenesRunBesideEachOther) {
    const GeneratedScene shared(1);
    std::vector<std::thread> threads;
    for (std::uint64_t seed = 2; seed < 6; ++seed) {
        threads.emplace_back([&shared, seed] {
            const GeneratedScene own(seed);
            for (int i = 0; i < 5; ++i) {
                ExpectRoundTrip(own.Clearances());
                ExpectRoundTrip(shared.Configuration());
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

TEST(ReleaseScene, DeletesAnElementOfSeveralBodiesOnce) {
    ICollisionConfiguration* const configuration = make_configuration();
    ICollisionElement* const element = make_element("shared", test::BoxMesh(0, 0, 0, 1, 1, 1));
    for (const std::uint32_t id : {1U, 2U}) {
        configuration->AddElement(make_body(id, "body"));
        configuration->RetrieveElements().back()->AddElement(element);
    }
    ReleaseScene(configuration);  // the sanitizers see what it leaves or takes twice
    ReleaseScene(static_cast<ICollisionConfiguration*>(nullptr));
    ReleaseScene(static_cast<IProximityConfiguration*>(nullptr));
}

}  // namespace
}  // namespace tarn
