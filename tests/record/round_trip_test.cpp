#include "record/assembly.h"
#include "support/owned_scene.h"
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

using program::TemporaryFolder;
using test::Assembly;
using test::ContentOf;
using test::OwnedScene;
using test::RetrieveScene;
using test::SceneContent;

/// A body that was never built comes back built with a new body's number.
SceneContent Built(SceneContent content) {
    for (test::BodyContent& body : content.bodies)
        body.leaf_number = std::max<std::uint64_t>(body.leaf_number, 1);
    return content;
}

template <typename Configuration>
OwnedScene<Configuration> ExpectRoundTrip(Configuration& configuration) {
    const TemporaryFolder folder;
    const std::string path = folder / "scene.xml";
    make_unique_recorder()->Store(&configuration, path);
    EXPECT_EQ(folder.FileCount(), 1U);
    OwnedScene<Configuration> again = RetrieveScene<Configuration>(path);
    const SceneContent expected = Built(ContentOf(configuration));
    const SceneContent found = ContentOf(*again);
    EXPECT_EQ(found.bodies.size(), expected.bodies.size());
    for (std::size_t i = 0; i < std::min(found.bodies.size(), expected.bodies.size()); ++i)
        EXPECT_TRUE(found.bodies[i] == expected.bodies[i]) << "body " << i << ": " << found.bodies[i].name;
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

Assembly GeneratedAssembly(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    const test::Mesh ball = test::BumpyBallMesh(0.1, 12);
    Assembly assembly;
    assembly.Add(0, 0, AllCharacters(), 1, {ball});
    assembly.Add(0xffffffffU, 0xffffffffffffffffU, "", 5, {test::TriangleSoup(random, 300, 1e6, 1e-2), ball});
    assembly.Add(3, 0x8000000000000000U, "  ", 32767, {test::TriangleSoup(random, 300, 1e300, 1e299)});
    assembly.Add(4, 7, "no elements", 2, {});
    assembly.Add(5, 7, "tiny numbers", 2, {{{0, -0.0, 5e-324, 1, 0, -2.2e-308, 0, 1, 1e-310}}});
    assembly.Add(6, 8, "not built", 0, {ball});
    std::shuffle(assembly.bodies.begin(), assembly.bodies.end(), random);
    return assembly;
}

TEST(RoundTrip, KeepsBodiesMeshesAndCouplesToTheLastBit) {
    for (const std::uint64_t seed : {1U, 2U, 3U}) {
        const Assembly assembly = GeneratedAssembly(seed);
        assembly.collisions->ConfigElementAgainstAll(assembly.bodies[0].get(), true);
        assembly.collisions->ConfigElementAgainstAll(assembly.bodies[1].get(), true);
        assembly.collisions->ConfigCouple(assembly.bodies[2].get(), assembly.bodies[2].get(), true);
        ExpectRoundTrip(*assembly.collisions);

        using Limits = std::numeric_limits<double>;
        std::vector<double> clearances = {0.0,
                                          -0.0,
                                          0.1,
                                          Limits::infinity(),
                                          Limits::quiet_NaN(),
                                          -Limits::quiet_NaN(),
                                          Limits::denorm_min(),
                                          Limits::max()};
        for (const auto& first : assembly.bodies) {
            for (const auto& second : assembly.bodies) {
                if (clearances.empty() || first->GetId() > second->GetId()) continue;
                assembly.clearances->ConfigCouple(first.get(), second.get(), {true, clearances.back()});
                clearances.pop_back();
            }
        }
        ASSERT_TRUE(clearances.empty());
        ExpectRoundTrip(*assembly.clearances);
    }
    ExpectRoundTrip(*make_unique_configuration());
    ExpectRoundTrip(*make_unique_proximity_configuration());
}

TEST(RoundTrip, KeepsBodiesThatShareAnIdentifierAndTheFirstAnswersForCouples) {
    Assembly assembly;
    for (const char* const name : {"first", "second", "third"})
        assembly.Add(name[0] == 't' ? 8 : 7, 1, name, 5, {test::BoxMesh(0, 0, 0, 1, 1, 1)});
    assembly.collisions->ConfigCouple(assembly.bodies[1].get(), assembly.bodies[2].get(), true);
    const auto again = ExpectRoundTrip(*assembly.collisions);
    std::vector<CollisionPair> couples;
    ASSERT_EQ(again->RetrieveCouples(couples).size(), 1U);
    EXPECT_EQ(couples[0].First->GetName(), "first");
    EXPECT_EQ(couples[0].Second->GetName(), "third");
}

TEST(RoundTrip, DifferentScenesRunBesideEachOther) {
    const Assembly shared = GeneratedAssembly(1);
    std::vector<std::thread> threads;
    for (std::uint64_t seed = 2; seed < 6; ++seed) {
        threads.emplace_back([&shared, seed] {
            const Assembly own = GeneratedAssembly(seed);
            for (int i = 0; i < 5; ++i) {
                ExpectRoundTrip(*own.clearances);
                ExpectRoundTrip(*shared.collisions);
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
