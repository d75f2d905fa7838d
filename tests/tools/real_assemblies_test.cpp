#include "data_folder.h"
#include "mesh_size_check.h"
#include "readers/file_content.h"
#include "readers/model_file.h"
#include "readers/program_error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <filesystem>
#include <limits>

namespace tarn::program {
namespace {

using Corner = std::array<double, 3>;

/// What a second reader, not ours, found in a file: boxes in the file's unit with five digits.
struct Facts {
    const char* file;
    std::size_t bodies, meshes, triangles;
    Corner low, high;
};

/// Real assemblies and parts.
class RealAssemblies : public testing::Test {
protected:
    void SetUp() override {
        folder_ = DataFolder();
        if (!std::filesystem::is_directory(folder_)) GTEST_SKIP() << "no folder " << folder_;
    }

    void Compare(const Facts& facts, double millimetres_per_unit) const {
        SCOPED_TRACE(facts.file);
        const Model model = ReadModelFile((folder_ / facts.file).string(), LengthUnit::Millimetre);
        EXPECT_EQ(model.parts.size(), facts.bodies);
        EXPECT_EQ(model.meshes.size(), facts.meshes);
        std::size_t triangle_count = 0;
        Corner low;
        Corner high;
        low.fill(std::numeric_limits<double>::infinity());
        high.fill(-std::numeric_limits<double>::infinity());
        for (const Part& part : model.parts) {
            for (const std::size_t mesh : part.meshes) {
                for (const tarn::TriangleData& triangle :
                     Placed(model.meshes[mesh].triangles, part.placement)) {
                    const auto coordinates = std::bit_cast<std::array<double, 9>>(triangle);
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

    std::filesystem::path folder_;
};

TEST_F(RealAssemblies, GlbFilesHaveTheirBodiesTrianglesAndBoxes) {
    // clang-format off
    const std::vector<Facts> files = {
        {"assemblies/cycloidal_drive.glb", 72, 13, 376520, {-53.886, -53.873, -28.275}, {53.814, 53.86, 3.65}},
        {"bim/duplex_apartment.glb", 215, 153, 25489, {-0.2415, -1.55, -4.3827}, {9.0415, 6.6348, 22.183}},
        {"open_duck_bdx/open_duck_bdx.glb", 133, 48, 596658, {-0.089873, -0.096304, -0.18342}, {0.10563, 0.083096, 0.24849}},
        {"parts/blub_thickened.glb", 1, 1, 23680, {-0.71146, -0.66943, -1.911}, {0.71146, 1.0777, 0.39977}},
        {"parts/spot.glb", 1, 1, 5856, {-0.47155, -0.73678, -0.66891}, {0.47155, 0.95365, 1.049}},
        {"so101_arm/so101_arm.glb", 17, 13, 398884, {-0.030983, -0.055462, -0.0024003}, {0.39863, 0.055463, 0.2657}},
        {"ur5/ur5_collision.glb", 7, 7, 5328, {-0.073579, -0.11, -0.048491}, {0.85628, 0.20445, 0.15762}},
        {"ur5/ur5_visual.glb", 7, 7, 95694, {-0.073366, -0.11, -0.048491}, {0.85618, 0.20436, 0.15767}},
    };
    // clang-format on
    for (const Facts& facts : files) Compare(facts, 1000);
}

TEST_F(RealAssemblies, ObjFilesHaveTheirTrianglesAndBoxes) {
    // clang-format off
    const std::vector<Facts> files = {
        {"fcl/env.obj", 1, 1, 2180, {-3004.5, -3004.5, -14.5}, {2987.5, 3004.5, 2987.5}},
        {"fcl/rob.obj", 1, 1, 216, {-500, -605, -425}, {500, 605, 425}},
        {"nasty/angle_block_flat.obj", 1, 1, 704, {-0.66935, -0.50995, 0}, {0.66923, 0.49005, 0}},
        {"nasty/angle_block_huge_1e9.obj", 1, 1, 704, {-4.9509e+08, -3.7719e+08, -5.0782e+08}, {4.95e+08, 3.6247e+08, 4.9218e+08}},
        {"nasty/angle_block_offset_1e6.obj", 1, 1, 704, {1e+06, -1e+06, 1e+06}, {1e+06, -1e+06, 1e+06}},
        {"nasty/angle_block_offset_1e9.obj", 1, 1, 704, {1e+09, 1e+09, 1e+09}, {1e+09, 1e+09, 1e+09}},
        {"nasty/angle_block_sliver_1e6.obj", 1, 1, 704, {-0.66935, -5.0995e-07, -0.68656}, {0.66923, 4.9005e-07, 0.66543}},
        {"nasty/angle_block_tiny_1e-3.obj", 1, 1, 704, {-0.00049509, -0.00037719, -0.00050782}, {0.000495, 0.00036247, 0.00049218}},
        {"nasty/angle_block_tiny_1e-9.obj", 1, 1, 704, {-4.9509e-10, -3.7719e-10, -5.0782e-10}, {4.95e-10, 3.6247e-10, 4.9218e-10}},
        {"nasty/cube_soup.obj", 1, 1, 12, {-10, 0, -10}, {10, 20, 10}},
        {"nasty/narrow_triangles.obj", 1, 1, 46, {-0.085934, 8.1e-05, -0.032262}, {0.50745, 8.1e-05, 0.044048}},
        {"nasty/nonmanifold_edge.obj", 1, 1, 6, {-2, 0, -1}, {2, 2, 1}},
        {"nasty/nonmanifold_vertex.obj", 1, 1, 4, {-2, 0, -2}, {2, 0, 2}},
        {"nasty/nonoriented_edge.obj", 1, 1, 4, {-2, 0, -1}, {2, 0, 1}},
    };
    // clang-format on
    for (const Facts& facts : files) Compare(facts, 1);

    // What moves a part far away must not cost its digits.
    const Model moved =
        ReadModelFile((folder_ / "nasty/angle_block_offset_1e9.obj").string(), LengthUnit::Millimetre);
    const tarn::TriangleData& first = moved.meshes[0].triangles[0];
    EXPECT_NE(first.v0x, static_cast<double>(static_cast<float>(first.v0x)));
}

TEST_F(RealAssemblies, OtherFormatsAreReadOnlyThroughAssimp) {
#ifdef TARN_WITH_ASSIMP
    Compare({"parts/ballA.off", 1, 1, 3796, {-10.913, -6.9199, -6.9278}, {2.9146, 6.9226, 6.9265}}, 1);
    Compare({"parts/featuretype.3MF", 1, 1, 2208, {-2.5, -1.25, 0}, {2.5, 1.25, 1.375}}, 1);
    Compare({"parts/cycloidal_fused.ply", 1, 1, 43368, {0.23955, -0.33863, 0.81065}, {2.1145, 1.536, 1.9176}},
            1);
#else
    const std::string path = (folder_ / "parts/ballA.off").string();
    try {
        ReadModelFile(path, LengthUnit::Millimetre);
        ADD_FAILURE() << path << " was read";
    } catch (const ProgramError& error) {
        EXPECT_EQ(error.what(), path +
                                    ": .off files are read only by builds with assimp (TARN_WITH_ASSIMP=ON); "
                                    "this build reads STL, OBJ, glTF and GLB");
    }
#endif
}

}  // namespace
}  // namespace tarn::program
