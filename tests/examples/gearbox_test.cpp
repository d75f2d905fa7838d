#include "gearbox/contour.h"
#include "gearbox/gearbox_model.h"
#include "gearbox/involute_gear.h"
#include "gearbox/solid.h"
#include "gearbox/stl_writer.h"
#include "gearbox/triangulation.h"

#include "tarn/tarn.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <numbers>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace gearbox {
namespace {

using Vertex = std::array<double, 3>;
using Couple = std::set<std::string>;

std::array<Vertex, 3> Corners(const tarn::TriangleData& t) {
    return {{{t.v0x, t.v0y, t.v0z}, {t.v1x, t.v1y, t.v1z}, {t.v2x, t.v2y, t.v2z}}};
}

// Edges that are not run along exactly once in either direction.
std::size_t OpenEdges(const Solid& solid) {
    std::map<std::pair<Vertex, Vertex>, int> uses;
    for (const auto& triangle : solid) {
        const auto corners = Corners(triangle);
        for (std::size_t i = 0; i < 3; ++i) ++uses[{corners[i], corners[(i + 1) % 3]}];
    }
    std::size_t open = 0;
    for (const auto& [edge, count] : uses) {
        const auto opposite = uses.find({edge.second, edge.first});
        if (count != 1 || opposite == uses.end()) ++open;
    }
    return open;
}

double Volume(const Solid& solid) {
    double sum = 0;
    for (const auto& t : solid) {
        sum += t.v0x * (t.v1y * t.v2z - t.v1z * t.v2y) + t.v0y * (t.v1z * t.v2x - t.v1x * t.v2z) +
               t.v0z * (t.v1x * t.v2y - t.v1y * t.v2x);
    }
    return sum / 6;
}

// What checks of every couple find, by name.
struct Findings {
    std::set<Couple> interfering;
    std::set<Couple> too_near;
    bool operator==(const Findings&) const = default;
};

Findings Check(const std::vector<Part>& parts) {
    std::vector<std::unique_ptr<tarn::ICollisionElement>> elements;
    std::vector<std::unique_ptr<tarn::ICollisionBody>> bodies;
    const auto configuration = tarn::make_unique_configuration();
    const auto proximity_configuration = tarn::make_unique_proximity_configuration();
    for (const Part& part : parts) {
        elements.push_back(tarn::make_unique_element(part.name, part.solid));
        bodies.push_back(tarn::make_unique_body(static_cast<std::uint32_t>(bodies.size() + 1),
                                                static_cast<std::uint64_t>(part.group), part.name));
        bodies.back()->AddElement(elements.back().get());
        bodies.back()->SetLeafNumber(5);
        configuration->AddElement(bodies.back().get(), true);
        proximity_configuration->AddElement(bodies.back().get(), {true, kLeastClearance});
    }
    tarn::CollisionResult result;
    tarn::make_unique_detector()->Check(result, *configuration, tarn::CheckPolicy::AllInterferences);
    Findings findings;
    for (const auto& pair : result.Pairs)
        findings.interfering.insert({pair.First->GetName(), pair.Second->GetName()});
    for (const auto& pair : tarn::MeasureProximity(*proximity_configuration)) {
        const tarn::ProximityState state = pair.outcome.state;
        EXPECT_NE(state, tarn::ProximityState::Touching) << pair.first->GetName();
        const Couple couple{pair.first->GetName(), pair.second->GetName()};
        EXPECT_EQ(findings.interfering.contains(couple), state == tarn::ProximityState::Intersecting);
        if (state == tarn::ProximityState::WithinClearance) findings.too_near.insert(couple);
    }
    return findings;
}

std::set<Couple> CouplesOf(const std::vector<Fault>& faults) {
    std::set<Couple> couples;
    for (const Fault& fault : faults) couples.insert({fault.first, fault.second});
    return couples;
}

TEST(Gearbox, PartsAreClosedAndOriented) {
    std::size_t triangle_count = 0;
    std::set<std::string> names;
    const std::vector<Part> parts = MakeGearbox(FaultyDimensions());
    for (const Part& part : parts) {
        SCOPED_TRACE(part.name);
        EXPECT_TRUE(names.insert(part.name).second) << "two parts of one name overwrite each other's file";
        EXPECT_EQ(OpenEdges(part.solid), 0u);
        EXPECT_GT(Volume(part.solid), 0);
        EXPECT_EQ(tarn::make_unique_element(part.name, part.solid)->GetTrianglesCount(), part.solid.size());
        triangle_count += part.solid.size();
    }
    EXPECT_GE(parts.size(), 30u);
    EXPECT_GE(triangle_count, 50000u);
}

// Each deviation by itself accounts for one of the faults, in the order of the lists.
TEST(Gearbox, EachFaultHasItsOwnCauseAndNothingElseIsFound) {
    const CriticalDimensions faulty = FaultyDimensions();
    std::vector<CriticalDimensions> variants(8, SoundDimensions());
    variants[0].output_shaft_x = faulty.output_shaft_x;
    variants[1].input_cap_bolt_length = faulty.input_cap_bolt_length;
    variants[2].output_journal_radius = faulty.output_journal_radius;
    variants[3].wheel_keyway_width = faulty.wheel_keyway_width;
    variants[4].input_shaft_x = faulty.input_shaft_x;
    variants[5].output_sleeve_end = faulty.output_sleeve_end;
    variants[6].output_cap_play = faulty.output_cap_play;
    variants.push_back(faulty);
    std::vector<Findings> expected;
    for (const Fault& fault : DeliberateFaults()) expected.push_back({CouplesOf({fault}), {}});
    for (const Fault& fault : TightPlaces()) expected.push_back({{}, CouplesOf({fault})});
    expected.emplace_back();
    expected.push_back({CouplesOf(DeliberateFaults()), CouplesOf(TightPlaces())});
    ASSERT_EQ(expected.size(), variants.size());
    for (std::size_t i = 0; i < variants.size(); ++i) {
        EXPECT_EQ(Check(MakeGearbox(variants[i])), expected[i]) << i;
    }
}

// Whether two gears touch at all of twelve positions through one tooth pitch, at none, or at some.
enum class Mesh { Free, Crossing, Changing };

Mesh TurnThroughOnePitch(const GearSize& first_size, const GearSize& second_size, double centre_distance) {
    const Solid first_solid = Stack(0, {Slice::Straight(5, {GearOutline(first_size, 0)})});
    const Solid second_solid =
        Stack(0, {Slice::Straight(6, {GearOutlineWithSpaceAt(second_size, std::numbers::pi)})});
    const auto first_element = tarn::make_unique_element("first", first_solid);
    const auto second_element = tarn::make_unique_element("second", second_solid);
    const auto first = tarn::make_shared_body(first_element.get(), 1, 1);
    const auto second = tarn::make_shared_body(second_element.get(), 2, 2);
    const auto configuration = tarn::make_unique_configuration();
    for (const auto& body : {first, second}) {
        body->SetLeafNumber(5);
        configuration->AddElement(body.get(), true);
    }
    const auto turned = [](double angle, double x, double z) {
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        return tarn::MATRIX{{c, -s, 0, x, s, c, 0, 0, 0, 0, 1, z}};
    };
    constexpr int kSteps = 12;
    int crossings = 0;
    for (int step = 0; step < kSteps; ++step) {
        const double turns = static_cast<double>(step) / kSteps;
        first->SetMatrix(turned(2 * std::numbers::pi * turns / first_size.teeth, 0, 0));
        second->SetMatrix(turned(-2 * std::numbers::pi * turns / second_size.teeth, centre_distance, -0.5));
        if (tarn::make_unique_detector()->Check(*configuration)) ++crossings;
    }
    return crossings == 0 ? Mesh::Free : crossings == kSteps ? Mesh::Crossing : Mesh::Changing;
}

// Involute flanks keep their play at every position; other flanks of the same thickness would not.
TEST(InvoluteGear, TeethRollWithoutTouchingAtTheRightDistance) {
    const std::pair<GearSize, GearSize> pairs[] = {
        {{2, 22}, {2, 58}}, {{2.5, 22}, {2.5, 54}}, {{3, 18}, {3, 19}}, {{1.5, 100}, {1.5, 20}}};
    for (const auto& [first, second] : pairs) {
        SCOPED_TRACE(first.teeth);
        const double distance = CentreDistance(first, second);
        EXPECT_EQ(TurnThroughOnePitch(first, second, distance), Mesh::Free);
        EXPECT_EQ(TurnThroughOnePitch(first, second, distance + 0.3), Mesh::Free);
        EXPECT_EQ(TurnThroughOnePitch(first, second, distance - 1), Mesh::Crossing);
    }
}

// Steps where material ends and begins in one plane, a blind hole, and an island: the volume tells whether
// each step covers the right area, and closedness whether the steps fit the sides.
TEST(Solid, StackClosesStepsOfNestedRegions) {
    const Contour square = Rectangle({-10, -10}, {10, 10});
    const Contour window = Rectangle({-6, -6}, {6, 6});
    const Contour core = Rectangle({-2, -2}, {2, 2});
    const Contour drill = Rectangle({7, 7}, {9, 9});
    const struct {
        std::vector<Slice> slices;
        double volume;
    } cases[] = {
        {{Slice::Straight(3, {square}), Slice::Straight(2, {square, drill})}, 3 * 400 + 2 * 396},
        {{Slice::Straight(2, {core}), Slice::Straight(1, {square, window}), Slice::Straight(4, {core})}, 352},
        {{Slice::Straight(1, {square, window, core, drill}), Slice::Straight(5, {square, drill})}, 2248},
    };
    for (const auto& [slices, volume] : cases) {
        const Solid solid = Stack(-1, slices);
        EXPECT_EQ(OpenEdges(solid), 0u);
        EXPECT_NEAR(Volume(solid), volume, 1e-9);
        const Solid halved = WithShortEdges(solid, 1.5);
        EXPECT_GT(halved.size(), solid.size());
        EXPECT_EQ(OpenEdges(halved), 0u);
        EXPECT_NEAR(Volume(halved), volume, 1e-9);
    }
}

TEST(Solid, RevolvedHalfCircleIsASphere) {
    Contour half_circle{{0, -2}};
    for (int i = 1; i < 60; ++i) {
        const double angle = std::numbers::pi * (i / 60.0 - 0.5);
        half_circle.push_back({2 * std::cos(angle), 2 * std::sin(angle)});
    }
    half_circle.push_back({0, 2});
    const Solid ball = Revolve(half_circle, 120);
    EXPECT_EQ(OpenEdges(ball), 0u);
    EXPECT_NEAR(Volume(ball), 4.0 / 3 * std::numbers::pi * 8, 0.05);
}

// A comb whose teeth hide the holes from each other, and points that lie on one line with bridges.
TEST(Triangulation, FillsExactlyTheAreaBetweenOutlineAndHoles) {
    const Contour comb{{0, 0},  {20, 0},  {20, 10}, {15, 10}, {15, 3},
                       {10, 3}, {10, 10}, {5, 10},  {5, 3},   {0, 3}};
    const std::vector<Contour> holes{Rectangle({1, 1}, {2, 2}), Rectangle({3, 1}, {4, 2}),
                                     Rectangle({6, 1}, {9, 2}), Rectangle({16, 4}, {19, 9}),
                                     Circle({7.5, 6}, 1.5)};
    double expected = SignedArea(comb);
    for (const Contour& hole : holes) expected -= SignedArea(hole);
    double area = 0;
    for (const auto& [a, b, c] : Triangulate(comb, holes)) {
        EXPECT_GT(Turn(a, b, c), 0);
        const Point centre{(a.x + b.x + c.x) / 3, (a.y + b.y + c.y) / 3};
        EXPECT_TRUE(Contains(comb, centre));
        for (const Contour& hole : holes) EXPECT_FALSE(Contains(hole, centre));
        area += Turn(a, b, c) / 2;
    }
    EXPECT_NEAR(area, expected, 1e-9);
    EXPECT_THROW(Triangulate(comb, {Rectangle({30, 0}, {31, 1})}), std::logic_error);
}

TEST(Contour, KeywaysTakeFromShaftsAndAddToHubs) {
    const double circle = std::numbers::pi * 15 * 15;
    const double segment = 15 * 15 * std::asin(4.0 / 15) - 4 * std::sqrt(15 * 15 - 4 * 4);
    const double at_surface = 2 * 4 * std::sqrt(15 * 15 - 4 * 4);
    // Chords leave out about a thousandth of the circle.
    EXPECT_NEAR(SignedArea(KeyedCircle(15, {8, 11})), circle - segment - (at_surface - 8 * 11), 1);
    EXPECT_NEAR(SignedArea(KeyedCircle(15, {8, 18})), circle - segment + (8 * 18 - at_surface), 1);
}

TEST(Contour, ConvexHullDropsWhatLiesWithinOrOnItsSides) {
    const Contour hull =
        ConvexHull({{1, 1}, {0, 0}, {2, 0}, {4, 0}, {4, 2}, {3, 1}, {4, 4}, {2, 2}, {0, 4}, {0, 3}});
    EXPECT_EQ(hull, (Contour{{0, 0}, {4, 0}, {4, 4}, {0, 4}}));
}

TEST(StlWriter, WritesHeaderCountAndTriangles) {
    const std::filesystem::path file =
        std::filesystem::path(testing::TempDir()) / "gearbox_stl_writer_test.stl";
    const Solid solid{{0, 0, 5, 3, 0, 5, 0, 4, 5}};
    WriteStl(file, solid);
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    const std::string bytes = content.str();
    std::filesystem::remove(file);
    ASSERT_EQ(bytes.size(), 134u);
    EXPECT_EQ(bytes.substr(80, 4), std::string("\1\0\0\0", 4));
    std::array<float, 12> values{};
    std::memcpy(values.data(), bytes.data() + 84, sizeof values);
    EXPECT_EQ(values, (std::array<float, 12>{0, 0, 1, 0, 0, 5, 3, 0, 5, 0, 4, 5}));
    EXPECT_THROW(WriteStl(file / "no_such_folder" / "part.stl", solid), std::runtime_error);
}

}  // namespace
}  // namespace gearbox
