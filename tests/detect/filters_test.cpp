#include "detect/filters.h"

#include "detect/collision_detector.h"
#include "detect/proximity_detector.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/rounds.h"
#include "support/same_bits.h"
#include "support/scene.h"

#include "tarn/thread_limit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace tarn::details {
namespace {

constexpr CheckPolicy kAll[] = {CheckPolicy::AllInterferences, CheckPolicy::AllInterferencesWithTriangles};

/// Bodies of some thousand triangles, so that searches go deep and are split over threads: bumpy balls,
/// tilted sheets, a soup of large triangles, and a lattice full of ties.
class Crowd {
public:
    explicit Crowd(std::mt19937_64& random) : random_(random) {
        ICollisionElement* const ball = scene_.AddElement(test::BumpyBallMesh(4.0, 30));
        ICollisionElement* const sheet = scene_.AddElement(test::GridMesh(9.0, 40));
        for (ICollisionElement* element : {ball, ball, sheet, sheet}) scene_.AddBody(element, {});
        scene_.AddBody(test::TriangleSoup(random, 400, 6.0, 2.0));
        scene_.AddBody(test::LatticeSoup(random, 300, 5, 0.5));
        scene_.Configuration().EnableAllCouples();
    }

    /// Rigid poses of all bodies, but for one in three, which is scaled, sheared or otherwise odd.
    void Move(double reach) {
        for (const auto& body : scene_.Bodies()) {
            body->SetMatrix(random_() % 3 == 0 ? test::RandomPlacement(random_, reach)
                                               : test::RandomRigid(random_, reach));
        }
        for (std::size_t i = 0; i + 1 < scene_.Bodies().size(); i += 2) {
            // Two flush ones: the same pose, or beside each other up to rounding.
            MATRIX pose = test::RandomRigid(random_, reach);
            scene_.Bodies()[i]->SetMatrix(pose);
            pose[3] += random_() % 2 == 0 ? 0.0 : 1e-9;
            if (random_() % 4 == 0) scene_.Bodies()[i + 1]->SetMatrix(pose);
        }
    }

    test::Scene& Scene() { return scene_; }

private:
    std::mt19937_64& random_;
    test::Scene scene_;
};

void ExpectSame(const CollisionResult& found, const CollisionResult& expected) {
    ASSERT_EQ(found.Pairs.size(), expected.Pairs.size());
    for (std::size_t i = 0; i < found.Pairs.size(); ++i) {
        EXPECT_EQ(found.Pairs[i].First, expected.Pairs[i].First);
        EXPECT_EQ(found.Pairs[i].Second, expected.Pairs[i].Second);
        ASSERT_EQ(found.Pairs[i].Triangles.size(), expected.Pairs[i].Triangles.size());
        for (std::size_t k = 0; k < found.Pairs[i].Triangles.size(); ++k)
            EXPECT_TRUE(test::SameBits(found.Pairs[i].Triangles[k], expected.Pairs[i].Triangles[k]));
    }
}

void ExpectSame(const ProximityResult& found, const ProximityResult& expected) {
    ASSERT_EQ(found.Pairs.size(), expected.Pairs.size());
    for (std::size_t i = 0; i < found.Pairs.size(); ++i) {
        EXPECT_EQ(found.Pairs[i].First, expected.Pairs[i].First);
        EXPECT_EQ(found.Pairs[i].Second, expected.Pairs[i].Second);
        EXPECT_EQ(found.Pairs[i].IntersectionFound, expected.Pairs[i].IntersectionFound);
        EXPECT_TRUE(test::SameBits(found.Pairs[i].distance, expected.Pairs[i].distance));
        EXPECT_TRUE(test::SameBits(found.Pairs[i].Segment, expected.Pairs[i].Segment));
        ASSERT_EQ(found.Pairs[i].Triangles.size(), expected.Pairs[i].Triangles.size());
        for (std::size_t k = 0; k < found.Pairs[i].Triangles.size(); ++k)
            EXPECT_TRUE(test::SameBits(found.Pairs[i].Triangles[k], expected.Pairs[i].Triangles[k]));
    }
}

TEST(Filters, ChangeNoAnswerOfAnyPolicyAtAnyNumberOfThreads) {
    std::size_t crossing = 0;
    std::size_t near = 0;
    for (unsigned seed = 0; seed < test::Rounds(12); ++seed) {
        std::mt19937_64 random(seed);
        Crowd crowd(random);
        ICollisionConfiguration& couples = crowd.Scene().Configuration();
        IProximityConfiguration& clearances = crowd.Scene().Clearances();
        for (int move = 0; move < 4; ++move) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", move " << move);
            crowd.Move(move % 2 == 0 ? 6.0 : 14.0);
            clearances.ConfigAllCouples({true, move < 2 ? 0.5 : 20.0});
            for (const CheckPolicy policy : kAll) {
                CollisionResult plain;
                ProximityResult plain_near;
                CollisionDetector(Filters::Off).Check(plain, couples, policy);
                ProximityDetector(Filters::Off).Check(plain_near, clearances, policy);
                crossing += plain.Pairs.size();
                near += plain_near.Pairs.size();
                for (const std::size_t threads : {1U, 2U, 3U, 8U}) {
                    RunWithThreadLimit(threads, [&] {
                        CollisionResult found;
                        ProximityResult found_near;
                        ExpectSame(CollisionDetector().Check(found, couples, policy), plain);
                        ExpectSame(ProximityDetector().Check(found_near, clearances, policy), plain_near);
                        EXPECT_EQ(CollisionDetector().Check(couples), !plain.Pairs.empty());
                        EXPECT_EQ(ProximityDetector().Check(clearances), !plain_near.Pairs.empty());
                    });
                }
            }
        }
    }
    EXPECT_GT(crossing, 100U);
    EXPECT_GT(near, crossing) << "hardly any clearance is tight: the test shows little";
}

// Boxes whose squared distance is too small for a number count as overlapping, among many bodies as well.
TEST(Filters, SeeGapsWhoseSquareIsNothing) {
    test::Scene scene;
    scene.AddBody(test::Mesh{{-4, -1, 0, 0, 0, 0, -4, 1, 0}});
    scene.AddBody(test::Mesh{{4, 0, -1, 1e-170, 0, 0, 4, 0, 1}});
    for (int i = 0; i < 18; ++i) scene.AddBody(test::BoxMesh(20 + i, 20, 20, 20.5 + i, 21, 21));
    IProximityConfiguration& clearances = scene.Clearances();
    clearances.ConfigAllCouples({true, 0.0});
    ProximityResult plain;
    ProximityResult found;
    ProximityDetector(Filters::Off).Check(plain, clearances, CheckPolicy::AllInterferences);
    EXPECT_EQ(plain.Pairs.size(), 1U);
    ExpectSame(ProximityDetector().Check(found, clearances, CheckPolicy::AllInterferences), plain);
}

}  // namespace
}  // namespace tarn::details
