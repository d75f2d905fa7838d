#include "mesh_size_check.h"
#include "program_run.h"
#include "readers/model_file.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <set>

namespace tarn::program {
namespace {

using Corner = std::array<double, 3>;

/// What a second reader, not ours, found in a file: boxes in the file's unit with five digits.
struct Facts {
    const char* file;
    std::size_t bodies, meshes, triangles;
    Corner low, high;
};

/// Real assemblies and parts, and awkward files from real exporters. They are no part of the project: the
/// build says where they are, or the variable TARN_DATA does.
class RealFiles : public testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::is_directory(folder_)) GTEST_SKIP() << "no folder " << folder_;
    }

    std::string Path(const std::string& name) const { return (folder_ / name).string(); }
    void Compare(const Facts& facts, double millimetres_per_unit) const {
        SCOPED_TRACE(facts.file);
        const Model model = ReadModelFile(Path(facts.file), LengthUnit::Millimetre);
        EXPECT_EQ(model.parts.size(), facts.bodies);
        EXPECT_EQ(model.meshes.size(), facts.meshes);
        std::size_t triangle_count = 0;
        Corner low;
        Corner high;
        low.fill(std::numeric_limits<double>::infinity());
        high.fill(-std::numeric_limits<double>::infinity());
        for (const Part& part : model.parts) {
            for (const std::size_t mesh : part.meshes) {
                for (const auto& triangle : Placed(model.meshes[mesh].triangles, part.placement)) {
                    const auto coordinates = Coordinates(triangle);
                    for (std::size_t index = 0; index < 9; ++index) {
                        low[index % 3] = std::min(low[index % 3], coordinates[index]);
                        high[index % 3] = std::max(high[index % 3], coordinates[index]);
                    }
                    ++triangle_count;
                }
            }
        }
        EXPECT_EQ(triangle_count, facts.triangles);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            // Half of the fifth digit, and a little for the singles of that reader.
            const auto slack = [](double value) { return 6e-5 * std::max(std::abs(value), 1e-11); };
            EXPECT_NEAR(low[axis] / millimetres_per_unit, facts.low[axis], slack(facts.low[axis])) << axis;
            EXPECT_NEAR(high[axis] / millimetres_per_unit, facts.high[axis], slack(facts.high[axis])) << axis;
        }
    }

    const char* const variable_ = std::getenv("TARN_DATA");
    const std::filesystem::path folder_ = variable_ == nullptr ? TARN_DATA_DIR : variable_;
};

TEST_F(RealFiles, HaveTheirBodiesTrianglesAndBoxes) {
    // clang-format off
    const std::vector<Facts> in_metres = {
        {"assemblies/cycloidal_drive.glb", 72, 13, 376520, {-53.886, -53.873, -28.275}, {53.814, 53.86, 3.65}},
        {"bim/duplex_apartment.glb", 215, 153, 25489, {-0.2415, -1.55, -4.3827}, {9.0415, 6.6348, 22.183}},
        {"parts/spot.glb", 1, 1, 5856, {-0.47155, -0.73678, -0.66891}, {0.47155, 0.95365, 1.049}},
        {"so101_arm/so101_arm.glb", 17, 13, 398884, {-0.030983, -0.055462, -0.0024003}, {0.39863, 0.055463, 0.2657}},
        {"ur5/ur5_visual.glb", 7, 7, 95694, {-0.073366, -0.11, -0.048491}, {0.85618, 0.20436, 0.15767}},
    };
    const std::vector<Facts> in_millimetres = {
        {"fcl/env.obj", 1, 1, 2180, {-3004.5, -3004.5, -14.5}, {2987.5, 3004.5, 2987.5}},
        {"fcl/rob.obj", 1, 1, 216, {-500, -605, -425}, {500, 605, 425}},
        {"nasty/angle_block_huge_1e9.obj", 1, 1, 704, {-4.9509e+08, -3.7719e+08, -5.0782e+08}, {4.95e+08, 3.6247e+08, 4.9218e+08}},
        {"nasty/angle_block_offset_1e9.obj", 1, 1, 704, {1e+09, 1e+09, 1e+09}, {1e+09, 1e+09, 1e+09}},
        {"nasty/angle_block_tiny_1e-9.obj", 1, 1, 704, {-4.9509e-10, -3.7719e-10, -5.0782e-10}, {4.95e-10, 3.6247e-10, 4.9218e-10}},
        {"nasty/cube_soup.obj", 1, 1, 12, {-10, 0, -10}, {10, 20, 10}},
        {"nasty/angle_block_ascii_crlf_upper.stl", 1, 1, 704, {-0.66929, 0, -1.352}, {0.66929, 1, 0}},
        {"nasty/Spider_binary.stl", 1, 1, 1368, {-3.1149, -4, -1.6493}, {3.1149, 4, 1.6493}},
        {"nasty/narrow_triangles.obj", 1, 1, 46, {-0.085934, 8.1e-05, -0.032262}, {0.50745, 8.1e-05, 0.044048}},
#ifdef TARN_WITH_ASSIMP
        {"parts/ballA.off", 1, 1, 3796, {-10.913, -6.9199, -6.9278}, {2.9146, 6.9226, 6.9265}},
        {"parts/featuretype.3MF", 1, 1, 2208, {-2.5, -1.25, 0}, {2.5, 1.25, 1.375}},
        {"parts/cycloidal_fused.ply", 1, 1, 43368, {0.23955, -0.33863, 0.81065}, {2.1145, 1.536, 1.9176}},
#endif
    };
    // clang-format on
    for (const Facts& facts : in_metres) Compare(facts, 1000);
    for (const Facts& facts : in_millimetres) Compare(facts, 1);
    // What moves a part far away must not cost its digits.
    const Model moved = ReadModelFile(Path("nasty/angle_block_offset_1e9.obj"), LengthUnit::Millimetre);
    const double x = moved.meshes[0].triangles[0].v0x;
    EXPECT_NE(x, static_cast<double>(static_cast<float>(x)));
#ifndef TARN_WITH_ASSIMP
    const std::string path = Path("parts/ballA.off");
    ExpectFailure(RunTarn({"check", path}),
                  path +
                      ": .off files are read only by builds with assimp (TARN_WITH_ASSIMP=ON); this build "
                      "reads STL, OBJ, glTF and GLB");
#endif
}

TEST_F(RealFiles, OfAnAssemblyAllCommandsFindTheSame) {
    const std::string file = Path("so101_arm/so101_arm.glb");
    const Words interfering = CouplesIn(RunJson({"check", file}, 1)["interferences"]);
    EXPECT_GT(interfering.size(), 10U);
    // Baking puts the very triangles into the scene that a check puts there, but another tree over them.
    // That changes no couple that interferes; which couples are measured to be too near, it can.
    const TemporaryFolder folder;
    EXPECT_EQ(RunTarn({"record", file, "-o", folder.Path("scene.xml")}).status, 0);
    EXPECT_EQ(CouplesIn(RunJson({"replay", folder.Path("scene.xml")}, 1)["interferences"]), interfering);

    const Json measured = RunJson({"clearance", file, "--clearance", "5"}, 1)["couples"];
    Json intersecting = Json::array();
    double last = 0;
    for (const Json& couple : measured) {
        if (couple["state"] == "intersecting") intersecting.push_back(couple);
        if (couple["state"] != "too_near") continue;
        const double distance = couple["distance_mm"];
        EXPECT_TRUE(last <= distance && distance <= 5) << couple;
        last = distance;
        const auto first = couple["first_point_mm"].get<Corner>();
        const auto second = couple["second_point_mm"].get<Corner>();
        EXPECT_NEAR(std::hypot(first[0] - second[0], first[1] - second[1], first[2] - second[2]), distance,
                    1e-6)
            << couple;
    }
    EXPECT_GT(last, 2.5);
    const auto sorted = [](const Words& couples) {
        return std::set<std::string>(couples.begin(), couples.end());
    };
    EXPECT_EQ(sorted(CouplesIn(intersecting)), sorted(interfering));
    EXPECT_EQ(RunJson({"clearance", file, "--clearance", "5", "--threads", "1"}, 1)["couples"], measured);
}

}  // namespace
}  // namespace tarn::program
