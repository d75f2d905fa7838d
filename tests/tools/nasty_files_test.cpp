#include "data_folder.h"
#include "readers/file_content.h"
#include "readers/program_error.h"
#include "readers/stl_reader.h"
#include "stl_samples.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarn::program {
namespace {

/// Awkward files from real exporters, and damaged copies of a real part.
class NastyFiles : public testing::Test {
protected:
    void SetUp() override {
        folder_ = DataFolder() / "nasty";
        if (!std::filesystem::is_directory(folder_)) GTEST_SKIP() << "no folder " << folder_;
    }

    StlContent Read(const std::string& name) const { return ReadStl(ReadWholeFile(folder_ / name), 1); }

private:
    std::filesystem::path folder_;
};

TEST_F(NastyFiles, OddOnesAreReadWhole) {
    const std::vector<std::pair<std::string, std::size_t>> files = {
        {"Spider_ascii.stl", 1368},
        {"Spider_binary.stl", 1368},
        {"angle_block_degenerate.stl", 739},
        {"angle_block_duplicate.stl", 739},
        {"angle_block_fins_nonmanifold.stl", 739},
        {"angle_block_holes.stl", 669},
        {"angle_block_mixed_winding.stl", 704},
        {"angle_block_offset_1e6.stl", 704},
        {"angle_block_tiny_1e-3.stl", 704},
        {"multibody.stl", 32},
        {"triangle_with_empty_solid.stl", 1},
        {"triangle_with_two_solids.stl", 2},
    };
    for (const auto& [name, count] : files) EXPECT_EQ(Read(name).triangles.size(), count) << name;
}

TEST_F(NastyFiles, FormsOfOnePartAgree) {
    // The texts have nine digits, which is enough to name a single exactly but not its double.
    const auto as_singles = [](const Triangles& triangles) {
        std::vector<float> singles;
        for (const tarn::TriangleData& triangle : triangles) {
            for (const double coordinate : Coordinates(triangle))
                singles.push_back(static_cast<float>(coordinate));
        }
        return singles;
    };
    const std::vector<float> expected = as_singles(Read("angle_block_ascii.stl").triangles);
    EXPECT_EQ(expected.size(), 704U * 9U);
    for (const char* name : {"angle_block_ascii_crlf_upper.stl", "angle_block_ascii_no_endsolid.stl",
                             "angle_block_binary_attr.stl", "angle_block_binary_header_solid.stl"}) {
        EXPECT_EQ(as_singles(Read(name).triangles), expected) << name;
    }
}

TEST_F(NastyFiles, BrokenOnesAreRefusedWithTheirPlace) {
    const std::vector<std::pair<std::string, std::string>> files = {
        {"angle_block_all_nan.stl", "facet 1: a coordinate is not finite"},
        {"angle_block_binary_count_huge.stl",
         "header promises 4294967280 facets, the file holds room for 704"},
        {"angle_block_binary_count_zero.stl", "header promises 0 facets, yet 35200 bytes follow it"},
        {"angle_block_binary_truncated.stl", "header promises 704 facets, the file holds room for 352"},
        {"angle_block_empty_binary.stl", "holds no triangles"},
        {"angle_block_nonfinite.stl", "facet 42: a coordinate is not finite"},
        {"angle_block_nonfinite_ascii.stl", "line 291: coordinate 'nan' is not finite"},
        {"empty.stl", "holds no triangles"},
    };
    for (const auto& [name, expected] : files) {
        try {
            Read(name);
            ADD_FAILURE() << name << " was read";
        } catch (const FormatError& error) {
            EXPECT_EQ(error.what(), expected) << name;
        }
    }
}

}  // namespace
}  // namespace tarn::program
