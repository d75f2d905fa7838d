#include "readers/obj_reader.h"

#include "error_of.h"
#include "stl_samples.h"

#include <gtest/gtest.h>

namespace tarn::program {
namespace {

/// Reads from an allocation of exactly this size, so that a sanitizer sees any read beyond.
Model Read(std::string_view bytes, double millimetres_per_unit = 1) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    return ReadObj({exact.data(), exact.size()}, millimetres_per_unit);
}

std::string ErrorOf(std::string_view bytes) {
    return program::ErrorOf([bytes] { Read(bytes); });
}

/// The one mesh of a file that is one part.
Triangles ReadWhole(std::string_view bytes, double millimetres_per_unit = 1) {
    const Model model = Read(bytes, millimetres_per_unit);
    EXPECT_EQ(model.parts.size(), 1U);
    EXPECT_TRUE(model.parts[0].is_whole_file);
    return model.meshes[0].triangles;
}

const std::string kSquare = "v 0 0 0\nv 1.5 0 0\nv 1.5 2 0.1\nv 0 2 0.1\n";
const Triangles kFan = {{0, 0, 0, 1.5, 0, 0, 1.5, 2, 0.1}, {0, 0, 0, 1.5, 2, 0.1, 0, 2, 0.1}};

TEST(ObjReader, EveryShapeGivesTheSameTriangles) {
    const std::string whole = kSquare + "f 1 2 3 4\n";
    const std::vector<std::string> shapes = {
        whole,
        "\xEF\xBB\xBF" + whole,
        Replaced(whole, "\n", "\r\n"),
        Replaced(whole, "\n", "\r"),
        Replaced(whole, " ", "\t  "),
        whole.substr(0, whole.size() - 1),
        kSquare + "f 1 2 3\nf 1 3 4",
        kSquare + "f -4 -3 -2 -1",
        kSquare + "f 1/9 2/-7 3/ 4/9",
        kSquare + "f 1//9 2//1 3//1 4//1",
        kSquare + "f 1/1/1 2/1/1 3/1/1 4/1/1",
        kSquare + "f 1 \\\n 2\\\r\n 3 4",
        kSquare + "g one\nf 1 2 3\ng two\ns off\nusemtl x\nf 1 3 4",
        Replaced(whole, "0 0\n", "0 0 1.0\n"),
        Replaced(whole, "0.1\n", "0.1 0.5 nonsense 1\n"),
        Replaced(whole, "0.1\n", "0.1 1 1 1 1 # a comment\n"),
        "# C:\\\n" + whole + "# f 1 2 9 \\",
        "o\n# nothing\n" + whole.substr(0, 8) + "\nl 1 1\np 1\nvt x\n" + whole.substr(8),
    };
    for (std::size_t index = 0; index + 1 < shapes.size(); ++index) {
        EXPECT_TRUE(AreSame(ReadWhole(shapes[index]), kFan)) << shapes[index];
        EXPECT_TRUE(Read(shapes[index]).warnings.empty()) << shapes[index];
    }
    EXPECT_TRUE(AreSame(Read(shapes.back()).meshes[0].triangles, kFan));
    EXPECT_EQ(ReadWhole(whole, 25.4)[0].v2z, 0.1 * 25.4);
}

TEST(ObjReader, ObjectsWithFacesArePartsAndUnknownLinesGiveOneWarning) {
    const Model model = Read(kSquare + "f 1 2 3\no empty\no a b \\\nf 1 3 4\ng group\nf 2 3 4\no\nf 1 2 4\n");
    ASSERT_EQ(model.parts.size(), 3U);
    EXPECT_TRUE(model.parts[0].is_whole_file);
    EXPECT_EQ(model.parts[1].name, "a b \\");
    EXPECT_EQ(model.parts[2].name, "object 2");
    EXPECT_EQ(model.owners[model.parts[1].owner], "a b \\");
    EXPECT_EQ(model.meshes[model.parts[1].meshes[0]].triangles.size(), 2U);
    EXPECT_EQ(Read("6540 2180\n" + kSquare + "f 1 2 3\nsurf 0 1\n").warnings,
              std::vector<std::string>{"2 lines of unknown kinds were passed over, the first is line 1"});
}

TEST(ObjReader, BrokenLinesAreRefusedWithTheirNumber) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "holds no faces"},
        {kSquare, "holds no faces"},
        {"v 0 0\n", "line 1: a vertex of 2 numbers"},
        {"\n\nv 1 2 3 4 5\n", "line 3: a vertex of 5 numbers"},
        {"v 1 2 3 4 5 6 7 8\n", "line 1: a vertex of more than 7 numbers"},
        {"v 1 2 3 0.5\n", "line 1: a vertex with the fourth coordinate '0.5', which must be 1"},
        {"v 1 2 \\\r\n3x", "line 2: '3x' is not a number"},
        {"v 1 nan 2", "line 1: coordinate 'nan' is not finite"},
        {"v 1 1e999 2", "line 1: coordinate '1e999' is not finite"},
        {kSquare + "f 1 2", "line 5: a face of 2 corners"},
        {kSquare + "f 1 2 5\nv 0 0 0", "line 5: vertex 5 does not exist, there are 4 so far"},
        {kSquare + "f 1 2 0", "line 5: vertex 0 does not exist, there are 4 so far"},
        {kSquare + "f 1 2 -5", "line 5: vertex -5 does not exist, there are 4 so far"},
        {kSquare + "f 1 2 99999999999999999999", "line 5: vertex 99999999999999999999 does not exist, there"},
        {kSquare + "f 1 2 -9223372036854775808", "line 5: vertex -9223372036854775808 does not exist, there"},
        {kSquare + "f 1 2 3.0", "line 5: '3.0' is not a corner of a face"},
        {kSquare + "f 1 2 /3", "line 5: '/3' is not a corner of a face"},
        {kSquare + "f 1 2 \x1b[2J", "line 5: '\\x1b[2J' is not a corner of a face"},
    };
    for (const auto& [bytes, expected] : cases)
        EXPECT_TRUE(ErrorOf(bytes).starts_with(expected)) << bytes << ": " << ErrorOf(bytes);
}

}  // namespace
}  // namespace tarn::program
