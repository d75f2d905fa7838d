#include "facade/configuration_kinds.h"
#include "facade/part.h"
#include "ostrel/quarrix/collision_factory.h"
#include "support/meshes.h"

#include <gtest/gtest.h>

#include <barrier>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

/// Scenes for ThreadSanitizer in the first place. A deadlock shows as a test that does not end.

namespace Ostrel::Quarrix::Collisions {
namespace {

using tarn::test::BallMesh;
using test::Part;
using test::Parts;

constexpr auto kIntersection = CheckCoupleConfiguration::Intersection;

class FacadeThreadsTest : public test::RegistryTest<> {
protected:
    static Parts MakeBalls(std::size_t count) {
        Parts balls;
        for (std::size_t i = 0; i < count; ++i)
            balls.push_back(std::make_shared<Part>("ball " + std::to_string(i), BallMesh(1.0, 3)));
        return balls;
    }

    static std::string NamesOf(const std::vector<std::shared_ptr<CollisionCouple>>& couples) {
        std::string names;
        for (const auto& couple : couples)
            names += couple->get_Element1()->get_Name() + " " + couple->get_Element2()->get_Name() + "; ";
        return names;
    }

    CollisionFactory factory_;
};

// Threads change bodies and configurations that share them; then, while all is settled but placements are
// pending, threads check; and so on.
TEST_F(FacadeThreadsTest, ChangeThenCheckInPhases) {
    constexpr std::size_t kBalls = 10;
    constexpr int kPhases = 6;
    const Parts shared = MakeBalls(kBalls);
    const Parts near = MakeBalls(kBalls);  // those of the proximity configurations alone
    const auto held = factory_.MakeCollisionConfiguration();
    held->AddElements(shared, kIntersection, 0.0);
    const auto clone = held->Clone();
    const auto clearances = factory_.MakeProximityConfiguration();
    clearances->AddElements(near, std::make_shared<ProximitySetting>(0.5));

    std::vector<std::string> found(2);
    std::vector<std::size_t> near_found(2);
    const auto change = [&](std::size_t thread, std::mt19937& random) {
        const auto own = factory_.MakeCollisionConfiguration();
        for (int step = 0; step < 40; ++step) {
            const std::size_t i = random() % kBalls;
            const double x = static_cast<double>(random() % 100) * 0.1;
            switch (thread) {
                case 0:
                    if (step % 4 == 0) shared[i]->Reshape(BallMesh(0.8, 2));
                    shared[i]->MoveToX(x);
                    near[i]->MoveToX(x);
                    break;
                case 1:
                    shared[i]->Reshape(BallMesh(0.5 + x * 0.1, 2 + static_cast<int>(random() % 3)));
                    shared[(i + 1) % kBalls]->MoveToX(x);
                    near[i]->Reshape(BallMesh(0.7, 2));
                    break;
                case 2: {
                    own->AddElement(shared[i], kIntersection, 0.0);
                    own->RemoveElement(shared[(i + 3) % kBalls]);
                    const auto copy = own->Clone();
                    copy->AddElements(shared, kIntersection, 0.0);
                    if (step % 2 == 0) copy->Dispose();
                    break;
                }
                default: {
                    // These bodies come and go while they move.
                    const auto passing = factory_.MakeProximityConfiguration();
                    const auto guest = MakeBalls(1)[0];
                    std::thread mover([&guest] {
                        for (int move = 0; move < 3; ++move) guest->MoveToX(move);
                        guest->Reshape(BallMesh(1.0, 2));
                    });
                    passing->AddElement(guest, std::make_shared<ProximitySetting>(1.0));
                    passing->RemoveElement(guest);
                    own->AddElement(guest, kIntersection, 0.0);
                    own->RemoveAllElements();
                    mover.join();
                }
            }
        }
    };
    const auto check = [&](std::size_t thread) {
        if (thread < 2) {
            const auto result = factory_.MakeCollisionDetector()->Check(
                thread == 0 ? held : clone, CheckResultType::AllInterferencesWithTriangles);
            found[thread] = NamesOf(result->get_CollidingElementCouples());
            EXPECT_EQ(result->get_Result(), factory_.MakeCollisionDetector()->Check(clone));
        } else {
            const auto result =
                factory_.MakeProximityDetector()->Check(clearances, CheckResultType::AllInterferences);
            near_found[thread - 2] = result->get_ElementCouples().size();
        }
    };
    constexpr std::size_t kThreads = 4;
    std::barrier barrier(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            std::mt19937 random(static_cast<unsigned>(thread));
            for (int phase = 0; phase < kPhases; ++phase) {
                change(thread, random);
                barrier.arrive_and_wait();
                // The last word on the placements, which the checks find pending.
                for (std::size_t i = thread; i < kBalls; i += kThreads) {
                    shared[i]->MoveToX(static_cast<double>(i + static_cast<std::size_t>(phase)) * 0.8);
                    near[i]->MoveToX(static_cast<double>(i) * 2.0);
                }
                barrier.arrive_and_wait();
                check(thread);
                barrier.arrive_and_wait();
                if (thread == 0) {
                    EXPECT_EQ(found[0], found[1]);
                    EXPECT_FALSE(found[0].empty());
                    EXPECT_EQ(near_found[0], near_found[1]);
                }
                barrier.arrive_and_wait();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const auto& ball : shared) EXPECT_EQ(registry_.GetReferenceCount(ball), 2);
    EXPECT_EQ(registry_.GetElementsCount(), 2 * kBalls);
}

// Elements use the object model wherever it calls them. One thread comes from the registry to the bodies, the
// other from the bodies' events to the registry: neither may hold a body while it runs the elements' code.
TEST_F(FacadeThreadsTest, LetElementsUseTheModelFromWithin) {
    constexpr int kRounds = 1500;
    Parts parts = MakeBalls(4);
    const auto helper = std::make_shared<Part>("helper");
    const Part::Hook use = [&] {
        const auto inner = factory_.MakeCollisionConfiguration();
        inner->AddElement(helper, kIntersection, 0.0);
        helper->MoveToX(1.0);
        EXPECT_EQ(inner->RetrieveElements().size(), 1U);
    };
    for (const auto& part : parts) {
        part->on_position = use;
        part->on_load = use;
        part->on_name = use;
        part->on_owner = use;
        part->on_destruction = use;
    }
    const auto held = factory_.MakeCollisionConfiguration();
    held->AddElements(parts, kIntersection, 0.0);
    std::barrier start(3);
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        start.arrive_and_wait();
        for (int round = 0; round < kRounds; ++round) {
            held->RemoveElement(parts[0]);
            held->AddElement(parts[0], kIntersection, 0.0);
        }
    });
    for (const std::size_t i : {0U, 1U}) {
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            for (int round = 0; round < kRounds; ++round) {
                parts[i]->MoveToX(round);
                if (round % 10 == 0) parts[0]->Reshape(BallMesh(1.0, 2));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    parts.clear();
    EXPECT_EQ(Part::LiveCount(), 5);
    held->Dispose();
    EXPECT_EQ(Part::LiveCount(), 1);
}

// The handler of an event that was raised before goes on while the body is given up.
TEST_F(FacadeThreadsTest, NeverRunHandlersOnABodyThatIsGone) {
    const auto part = std::make_shared<Part>("part", BallMesh(1.0, 2));
    const auto configuration = factory_.MakeCollisionConfiguration();
    for (const bool reshapes : {false, true}) {
        configuration->AddElement(part, kIntersection, 0.0);
        const auto wrapper = registry_.Get(part);
        Part::Hook& hook = reshapes ? part->on_load : part->on_position;
        int calls = 0;
        hook = [&] {
            ++calls;
            std::thread([&] { configuration->RemoveElement(part); }).join();
            EXPECT_TRUE(wrapper->IsDisposed());
        };
        if (reshapes) {
            part->Reshape(BallMesh(1.0, 3));
        } else {
            part->MoveToX(5.0);
        }
        EXPECT_EQ(calls, 1);
        hook = nullptr;
    }
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions
