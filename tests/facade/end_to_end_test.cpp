#include "ostrel/quarrix/collisions.h"
#include "part.h"
#include "support/meshes.h"

#include "tarn/triangle_segments.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace Ostrel::Quarrix::Collisions::test {
namespace {

using EndToEnd = RegistryTest<>;

/// A check as a host runs it: elements, a configuration, a check, a move, a change of shape, the way out.
TEST_F(EndToEnd, FromElementsToTheCollisionCentre) {
    const auto machine = std::make_shared<Owner>();
    const auto fixture = std::make_shared<Owner>();
    const auto table =
        std::make_shared<Part>("table", tarn::test::BoxMesh(0, 0, -30, 100, 100, -10), machine);
    const auto spindle = std::make_shared<Part>("spindle", tarn::test::BallMesh(20, 12), machine);
    const auto clamp = std::make_shared<Part>("clamp", tarn::test::BoxMesh(0, -10, 5, 30, 10, 20), fixture);
    spindle->MoveToX(90);
    clamp->MoveToX(10);

    CollisionFactory factory;
    const auto configuration = factory.MakeCollisionConfiguration();
    for (const auto& element : {table, spindle, clamp})
        configuration->AddElement(element, CheckCoupleConfiguration::None, 0.0);
    EXPECT_EQ(configuration->RetrieveCouplesCount(), 0);
    // What moves against what is clamped, and not the machine against itself.
    configuration->EnableInterOwnersOnly({machine, fixture}, CheckCoupleConfiguration::Intersection, 0.0);
    EXPECT_EQ(configuration->RetrieveCouplesCount(), 2);
    EXPECT_FALSE(configuration->CoupleIsEnable(table, spindle));

    const auto detector = factory.MakeCollisionDetector();
    const auto check = [&] {
        return detector->Check(configuration, CheckResultType::AllInterferencesWithTriangles);
    };
    EXPECT_FALSE(check()->get_Result());

    // The spindle comes near the clamp and into it. Its table is not looked at.
    spindle->MoveToX(50);
    const auto result = check();
    ASSERT_EQ(result->get_CollidingElementCouples().size(), 1U);
    const auto couple = result->get_CollidingElementCouples().front();
    EXPECT_EQ(couple->get_Element1(), spindle);
    EXPECT_EQ(couple->get_Element2(), clamp);
    EXPECT_EQ(result->get_InterferenceType(), InterferenceResultType::Intersect);
    // The centre lies on both surfaces: on the ball, up to its facets, and on the clamp's box.
    const std::array<double, 3> centre = result->get_CollisionCenter();
    const double x = centre[0] - 50;
    EXPECT_NEAR(x * x + centre[1] * centre[1] + centre[2] * centre[2], 400.0, 40.0);
    EXPECT_LE(centre[0], 40.0);
    EXPECT_LE(std::abs(centre[1]), 10.0);
    EXPECT_GE(centre[2], 5.0);
    // It is the middle of the crossing of the two triangles that are reported.
    const auto triangles = result->get_IntersectingTriangles();
    ASSERT_EQ(triangles.size(), 2U);
    const auto data = [](const Triangle& t) {
        const auto [a, b, c] = std::array{t.get_V0(), t.get_V1(), t.get_V2()};
        return tarn::TriangleData{a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2]};
    };
    const auto [crosses, segment] =
        tarn::ComputeIntersectingSegment(data(*triangles[0]), data(*triangles[1]));
    ASSERT_TRUE(crosses);
    EXPECT_EQ(centre[0], (segment.P1X + segment.P2X) * 0.5);

    // A slimmer spindle passes.
    spindle->Reshape(tarn::test::BallMesh(9, 12));
    EXPECT_FALSE(check()->get_Result());

    // The same elements under clearances: between the clamp at x = 40 and the spindle something above 1 is left.
    const auto clearances = factory.MakeProximityConfiguration();
    clearances->AddElements({spindle, clamp}, std::make_shared<ProximitySetting>(4.0));
    const auto near = factory.MakeProximityDetector()->Check(clearances, CheckResultType::AllInterferences);
    ASSERT_EQ(near->get_ElementCouples().size(), 1U);
    EXPECT_FALSE(near->get_ElementCouples().front()->get_Intersecting());
    EXPECT_NEAR(near->get_ElementCouples().front()->get_DistanceSegment()->get_Length(),
                std::hypot(10.0, 5.0) - 9.0, 0.5);

    EXPECT_EQ(registry_.GetReferenceCount(spindle), 2);
    EXPECT_EQ(registry_.GetReferenceCount(table), 1);
    configuration->Dispose();
    EXPECT_EQ(registry_.GetReferenceCount(spindle), 1);
    clearances->Dispose();
    EXPECT_EQ(registry_.GetElementsCount(), 0U);
    EXPECT_EQ(couple->get_Element1()->get_Name(), "spindle") << "results outlive their configuration";
    EXPECT_EQ(spindle.use_count(), 1 + 1 + 1) << "held by this test, its couple, and its near couple";
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions::test
