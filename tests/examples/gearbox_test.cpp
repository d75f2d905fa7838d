#include "gearbox/contour.h"
#include "gearbox/gearbox_model.h"
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

// All interfering couples by name, as a check of every couple finds them.
std::set<Couple> FindInterferences(const std::vector<Part>& parts) {
    std::vector<std::unique_ptr<tarn::ICollisionElement>> elements;
    std::vector<std::unique_ptr<tarn::ICollisionBody>> bodies;
    const auto configuration = tarn::make_unique_configuration();
    for (const Part& part : parts) {
        elements.push_back(tarn::make_unique_element(part.name, part.solid));
        bodies.push_back(tarn::make_unique_body(static_cast<std::uint32_t>(bodies.size() + 1),
                                                static_cast<std::uint64_t>(part.group), part.name));
        bodies.back()->AddElement(elements.back().get());
        bodies.back()->SetLeafNumber(5);
        configuration->AddElement(bodies.back().get(), true);
    }
    tarn::CollisionResult result;
    tarn::make_unique_detector()->Check(result, *configuration, tarn::CheckPolicy::AllInterferences);
    std::set<Couple> couples;
    for (const auto& pair : result.Pairs) couples.insert({pair.First->GetName(), pair.Second->GetName()});
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

TEST(Gearbox, ExactlyTheDeliberateFaultsInterfere) {
    std::set<Couple> expected;
    for (const Fault& fault : DeliberateFaults()) expected.insert({fault.first, fault.second});
    EXPECT_EQ(FindInterferences(MakeGearbox(FaultyDimensions())), expected);
}

TEST(Gearbox, SoundDimensionsLeaveEverythingFree) {
    EXPECT_EQ(FindInterferences(MakeGearbox(SoundDimensions())), std::set<Couple>{});
}

// Each deviation by itself accounts for one of the faults, in the order of the list.
TEST(Gearbox, EachFaultHasItsOwnCause) {
    const CriticalDimensions faulty = FaultyDimensions();
    std::vector<CriticalDimensions> variants(4, SoundDimensions());
    variants[0].output_shaft_x = faulty.output_shaft_x;
    variants[1].input_cap_bolt_length = faulty.input_cap_bolt_length;
    variants[2].output_journal_radius = faulty.output_journal_radius;
    variants[3].wheel_keyway_width = faulty.wheel_keyway_width;
    ASSERT_EQ(DeliberateFaults().size(), variants.size());
    for (std::size_t i = 0; i < variants.size(); ++i) {
        const Fault& fault = DeliberateFaults()[i];
        const std::set<Couple> expected{{fault.first, fault.second}};
        EXPECT_EQ(FindInterferences(MakeGearbox(variants[i])), expected) << fault.what;
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
