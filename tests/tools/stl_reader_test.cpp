#include "readers/stl_reader.h"

#include "error_of.h"
#include "stl_samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <limits>

namespace tarn::program {
namespace {

/// Reads from an allocation of exactly this size, so that a sanitizer sees any read beyond.
StlContent Read(std::string_view bytes, double millimetres_per_unit = 1) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    return ReadStl({exact.data(), exact.size()}, millimetres_per_unit);
}

/// The error of a file that must be refused, or an empty text.
std::string ErrorOf(std::string_view bytes, double millimetres_per_unit = 1) {
    return program::ErrorOf([=] { Read(bytes, millimetres_per_unit); });
}

/// A facet whose second vertex, on line 5, has this word as its first coordinate.
std::string TextWithWord(std::string_view word) {
    return Replaced(TextStl(SampleTriangles()), "vertex 1.5", "vertex " + std::string(word));
}

std::string UpperCase(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

TEST(StlReader, EveryShapeGivesTheSameTriangles) {
    const Triangles triangles = SampleTriangles();
    const std::string text = TextStl(triangles);
    const std::vector<std::string> shapes = {
        text,
        UpperCase(text),
        "\xEF\xBB\xBF" + text,
        " \t\r\n " + text,
        Replaced(text, "\n", "\r\n"),
        Replaced(text, "\n", "\r"),
        Replaced(text, " ", "\t "),
        Replaced(text, "part", ""),
        Replaced(text, "part", "facet normal \xff\x01 vertex"),
        Replaced(text, "endsolid part\n", ""),
        Replaced(text, "normal 0 0 1", "normal -nan(ind) 1.#QNAN x"),
        Replaced(text, "vertex 1", "vertex +1"),
        TextStl({triangles[0]}) + "solid none\nendsolid\n" + TextStl({triangles[1]}),
        BinaryStl(triangles),
        BinaryStl(triangles, 2, "solid part\nfacet normal"),
    };
    for (std::size_t index = 0; index < shapes.size(); ++index) {
        const StlContent content = Read(shapes[index]);
        EXPECT_TRUE(AreSame(content.triangles, triangles)) << "shape " << index;
        EXPECT_TRUE(content.warnings.empty()) << "shape " << index;
    }
}

TEST(StlReader, NumbersAreReadWholeAndConverted) {
    const std::string zeros(500, '0');
    // clang-format off
    const std::vector<std::pair<std::string, double>> words = {
        {"+1.0", 1}, {"-1E3", -1000}, {".5", 0.5}, {"5.", 5}, {"0.1", 0.1}, {"1e308", 1e308},
        {"0e999", 0}, {"1e-400", 0}, {"-1e-400", 0}, {"1e-99999999999999999999", 0},
        {"0." + zeros + "1", 0}, {"0." + zeros + "1e501", 1}, {"1" + zeros + "e-500", 1},
        {"1" + zeros + "e-900", 0}};
    // clang-format on
    for (const auto& [word, value] : words)
        EXPECT_EQ(Read(TextWithWord(word)).triangles[0].v1x, value) << word;
    EXPECT_EQ(Read(TextWithWord("0.1"), 25.4).triangles[0].v1x, 0.1 * 25.4);
    EXPECT_EQ(Read(BinaryStl(SampleTriangles()), 1000).triangles[1].v2z, 12750);
}

TEST(StlReader, CoordinatesThatAreNoFiniteNumbersAreRefusedWithTheirPlace) {
    const std::string zeros(500, '0');
    for (const std::string& word :
         {std::string("nan"), std::string("inf"), std::string("-INF"), std::string("1e400"), "1" + zeros,
          "0." + zeros + "1e900", std::string("1e99999999999999999999")}) {
        const std::string error = ErrorOf(TextWithWord(word));
        EXPECT_TRUE(error.starts_with("line 5: ") && error.ends_with("is not finite"))
            << word << ": " << error;
    }
    for (const char* word : {"1.0abc", "1,5", "+-1", "--1", "0x10", "1e", "-", "endloop"}) {
        EXPECT_EQ(ErrorOf(TextWithWord(word)), "line 5: '" + std::string(word) + "' is not a number");
    }
    EXPECT_EQ(ErrorOf(TextWithWord("1e308"), 10), "line 5: a coordinate is not finite in millimetres");

    for (const double value :
         {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity()}) {
        Triangles triangles = SampleTriangles();
        triangles[1].v2z = value;
        EXPECT_EQ(ErrorOf(BinaryStl(triangles)), "facet 2: a coordinate is not finite");
    }
}

TEST(StlReader, BrokenFilesAreRefusedWithTheirPlace) {
    const Triangles triangles = SampleTriangles();
    const std::string text = TextStl(triangles);
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", "is empty, holds no triangles"},
        {"a word", "is neither text nor binary STL, holds no triangles"},
        {"solid none\nendsolid none", "holds no triangles"},
        {Replaced(text, "    endloop", "vertex 1 2 3\nendloop"),
         "line 7: 'vertex' stands where 'endloop' is expected"},
        {Replaced(Replaced(text, "\n", "\r\n"), "outer", "inner"),
         "line 3: 'inner' stands where 'outer' is expected"},
        {Replaced(text, "\n", "\r") + "\x1b[2J", "line 17: '\\x1b[2J' stands where 'facet' is expected"},
        {text.substr(0, text.find("endloop")), "line 7: the file ends inside a facet"},
        {BinaryStl({}), "holds no triangles"},
        {BinaryStl(triangles, 0), "header promises 0 facets, yet 100 bytes follow it"},
        {BinaryStl(triangles, 3), "header promises 3 facets, the file holds room for 2"},
        {BinaryStl(triangles, 0xffffffff, "solid part"),
         "header promises 4294967295 facets, the file holds room for 2"},
    };
    for (const auto& [bytes, expected] : cases) EXPECT_EQ(ErrorOf(bytes), expected);

    const StlContent longer = Read(BinaryStl(triangles, 1, "solid part"));
    EXPECT_TRUE(AreSame(longer.triangles, {triangles[0]}));
    EXPECT_EQ(longer.warnings, std::vector<std::string>{"50 bytes behind the 1 facets that the header "
                                                        "promises were ignored"});
}

TEST(StlReader, ATruncatedFileGivesItsWholeFacetsOrAnError) {
    const Triangles triangles = SampleTriangles();
    const std::string binary = BinaryStl(triangles);
    for (std::size_t size = 0; size < binary.size(); ++size)
        EXPECT_NE(ErrorOf(binary.substr(0, size)), "") << size;

    const std::string text = TextStl(triangles);
    for (std::size_t size = 0; size < text.size(); ++size) {
        const std::string part = text.substr(0, size);
        if (!ErrorOf(part).empty()) continue;
        Triangles whole = triangles;
        whole.resize(part.find("endfacet") == part.rfind("endfacet") ? 1 : 2);
        EXPECT_TRUE(AreSame(Read(part).triangles, whole)) << size;
    }
    EXPECT_EQ(ErrorOf(text.substr(0, text.rfind("endsolid"))), "");
}

}  // namespace
}  // namespace tarn::program
