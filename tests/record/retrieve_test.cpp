#include "support/owned_scene.h"
#include "support/scene_content.h"
#include "tools/temporary_folder.h"

#include "tarn/exception.h"

#include <gtest/gtest.h>

#include <bit>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn {
namespace {

using program::TemporaryFolder;
using test::ContentOf;
using test::RetrieveScene;
using test::SceneContent;

/// A sound tag whose attributes stand in double quotes, each a word of its own.
constexpr std::string_view kOwner = R"(<owner id="5"/>)";
constexpr std::string_view kElement = R"(<element owner="5" name="a" id="7" leaves="3" depth="0">)";
constexpr std::string_view kTriangle =
    R"(<triangle x0="0" y0="0" z0="0" x1="1" y1="0" z1="0" x2="0" y2="1" z2="0"/>)";
constexpr std::string_view kPair = R"(<pair first="7" second="7"/>)";
constexpr std::string_view kClearPair = R"(<pair first="7" second="7" clearance="2"/>)";

/// A tag with another value of an attribute.
std::string With(std::string_view tag, const std::string& attribute, const std::string& value) {
    std::string text(tag);
    const std::size_t begin = text.find(" " + attribute + "=\"") + attribute.size() + 3;
    return text.replace(begin, text.find('"', begin) - begin, value);
}

/// A tag without an attribute.
std::string Without(std::string_view tag, const std::string& attribute) {
    std::string text(tag);
    const std::size_t begin = text.find(" " + attribute + "=\"");
    return text.erase(begin, text.find('"', begin + attribute.size() + 3) + 1 - begin);
}

/// Tags as a whole scene, on three lines.
std::string Collision(std::string_view tags) {
    return "<scene type=\"collision\">\n" + std::string(tags) + "\n</scene>";
}

std::string Proximity(std::string_view tags) {
    return With(Collision(tags), "type", "proximity");
}

std::string Element(const std::string& content, const std::string& start = std::string(kElement)) {
    return start + content + "</element>";
}

template <typename Configuration>
SceneContent ContentOfText(const std::string& text) {
    const TemporaryFolder folder;
    return ContentOf(*RetrieveScene<Configuration>(folder.Write("scene.xml", text)));
}

/// The message of the inconsistency that retrieving a text meets, and behind an arrow what caused it.
template <typename Configuration = ICollisionConfiguration>
std::string FaultOf(const std::string& text) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("scene.xml", text);
    Configuration* configuration = nullptr;
    try {
        make_unique_recorder()->Retrieve(path, &configuration);
        ReleaseScene(configuration);
    } catch (const InconsistentDataException& error) {
        EXPECT_EQ(configuration, nullptr);
        return error.nested() ? error.message() + " <- " + error.nested()->message() : error.message();
    }
    return "retrieved: " + text;
}
const auto ProximityFaultOf = FaultOf<IProximityConfiguration>;

std::string Missing(const std::string& attribute, const std::string& tag) {
    return "Missing attribute '" + attribute + "' of '" + tag + "' (line 2)";
}

std::string Unreadable(const std::string& attribute, const std::string& tag, const std::string& value) {
    return "Unreadable attribute '" + attribute + "' of '" + tag + "' (line 2): '" + value + "'";
}

TEST(Retrieve, NamesTheMalformedElementAsItIsWritten) {
    EXPECT_EQ(FaultOf(Collision("<oWner/>")),
              "No 'id' attribute found for owner 'oWner' <- " + Missing("id", "oWner"));
    for (const char* const value :
         {"", "x", "1.0", "12abc", "9223372036854775808", "-9223372036854775809", "+-1"})
        EXPECT_EQ(FaultOf(Collision(With(kOwner, "id", value))),
                  "No 'id' attribute found for owner 'owner' <- " + Unreadable("id", "owner", value));
    for (const char* const attribute : {"owner", "name", "id", "leaves", "depth"})
        EXPECT_EQ(FaultOf(Collision(Element("", Without(kElement, attribute)))),
                  "No attributes found for element 'element' <- " + Missing(attribute, "element"));
    const std::string of_pair = "No 'id' attribute found for pair 'pair' <- ";
    for (const char* const attribute : {"first", "second"}) {
        EXPECT_EQ(FaultOf(Collision(Without(kPair, attribute))), of_pair + Missing(attribute, "pair"));
        EXPECT_EQ(ProximityFaultOf(Proximity(With(kClearPair, attribute, "-1"))),
                  of_pair + Unreadable(attribute, "pair", "-1"));
    }
}

TEST(Retrieve, RefusesValuesThatNothingCanBeBuiltFrom) {
    for (const auto& [attribute, value] : {std::pair("owner", "9223372036854775808"),
                                           {"owner", "5 5"},
                                           {"id", "-1"},
                                           {"id", "4294967296"},
                                           {"owner", "0x-7"},
                                           {"leaves", "-1"},
                                           {"leaves", "32768"},
                                           {"leaves", "5.0"}})
        EXPECT_EQ(FaultOf(Collision(Element("", With(kElement, attribute, value)))),
                  Unreadable(attribute, "element", value));
    for (const char* const value :
         {"", " ", "0,5", "1.5x", "1 2", "nan", "inf", "-inf", "1e309", "+-1", "--1", "0x", "-0x-1", "e5"})
        EXPECT_EQ(FaultOf(Collision(Element(With(kTriangle, "y1", value)))),
                  Unreadable("y1", "triangle", value));
    for (const char* const coordinate : {"x0", "y0", "z0", "x1", "y1", "z1", "x2", "y2", "z2"})
        EXPECT_EQ(FaultOf(Collision(Element(Without(kTriangle, coordinate)))),
                  Missing(coordinate, "triangle"));
    EXPECT_EQ(FaultOf(Collision(Element(With(kTriangle, "x0", std::string(40, '7') + "x")))),
              Unreadable("x0", "triangle", std::string(40, '7') + "..."));
    for (const char* const value : {"-1", "-1e-300", "-inf", "", "1,5", "0xinf", "-0xnan"})
        EXPECT_EQ(ProximityFaultOf(Proximity(With(kClearPair, "clearance", value))),
                  Unreadable("clearance", "pair", value));
    EXPECT_EQ(ProximityFaultOf(Proximity(kPair)), Missing("clearance", "pair"));
    const std::string outside = "Triangle outside any element: 'triangle' (line 2)";
    EXPECT_EQ(FaultOf(Collision(kTriangle)), outside);
    EXPECT_EQ(FaultOf(Collision(Element("") + std::string(kTriangle))), outside);
    EXPECT_EQ(FaultOf(Collision(Element("<stl>\n" + Element("") + "</stl>"))),
              "Element inside another one: 'element' (line 3)");
}

TEST(Retrieve, RefusesFilesOfAnotherKind) {
    const std::string wrong_type = "Wrong scene type.";
    EXPECT_EQ(ProximityFaultOf(Collision("")), wrong_type);
    for (const std::string& text :
         {Proximity(""), std::string("<scene/>"), std::string("<scene type=\"collision \"/>"),
          std::string("<scene type=\"Collision\"/>"), std::string("<a/><scene type=\"collision\"/>")})
        EXPECT_EQ(FaultOf(text), wrong_type);

    std::string deep;
    for (int depth = 0; depth < 100'000; ++depth) deep += "<a>";
    // So many attributes that finding one that comes twice takes hours; quotes and comments hide no ends.
    std::string crowded = "<!-- > -->\n<a b='>'";
    for (int attribute = 0; attribute < 1000; ++attribute) crowded += " c=\"'\"";
    for (const auto& [text, message] :
         {std::pair<std::string, std::string>("", "Error=XML_ERROR_EMPTY_DOCUMENT ErrorID=13"),
          {"<scene type=\"collision\">\n<owners>\n</scene>",
           "Error=XML_ERROR_MISMATCHED_ELEMENT ErrorID=14 (0xe) Line number=2"},
          {Collision("<x y=1/>"), "Error=XML_ERROR_PARSING_ATTRIBUTE ErrorID=7 (0x7) Line number=2"},
          {std::string(100'000, '<'), "Error=XML_ERROR_PARSING ErrorID=15"},
          {"<!-- nothing -->", "No root element: filename="},
          {Collision(deep), "Error=XML_ELEMENT_DEPTH_EXCEEDED ErrorID=18"},
          {Collision(crowded + "/>"), "Tag with more than 1000 attributes (line 3)"}})
        EXPECT_TRUE(FaultOf(text).starts_with(message)) << FaultOf(text).substr(0, 100);
}

TEST(Retrieve, ReportsFilesThatCannotBeRead) {
    const TemporaryFolder folder;
    for (const auto& [path, message] :
         {std::pair(folder.Path("missing"), "Error=XML_ERROR_FILE_NOT_FOUND ErrorID=3"),
          {folder.Path(""), "Error=XML_ERROR_FILE_READ_ERROR ErrorID=5"}}) {
        try {
            RetrieveScene<IProximityConfiguration>(path);
            ADD_FAILURE() << path;
        } catch (const RuntimeException& error) {
            EXPECT_TRUE(error.message().starts_with(message)) << error.message();
            EXPECT_TRUE(error.message().ends_with("filename=" + path)) << error.message();
        }
    }
    const auto recorder = make_unique_recorder();
    const std::string sound = folder.Write("sound", Collision(""));
    EXPECT_THROW(recorder->Retrieve(sound, static_cast<ICollisionConfiguration**>(nullptr)),
                 NullPointerException);
    EXPECT_THROW(recorder->Retrieve(sound, static_cast<IProximityConfiguration**>(nullptr)),
                 NullPointerException);
}

TEST(Retrieve, FindsElementsInAnyCaseAnywhereBelowARootOfAnyName) {
    const std::string text = R"(<?xml version="1.0"?><!-- any --><Triangle type="collision" id="x">
        <PAIR FIRST="1" first="7" second="0x8"/><other><Owner id="-1"/><pair first="7" second="9"/>
        <ELEMENT owner="5" name="a" id="8" leaves="2" depth="?"><count><![CDATA[text]]>)" +
                             std::string(kTriangle) + R"(</count><TriAngle x0='0' y0='0' z0='0' x1='2'
        y1='0' z1='0' x2='0' y2='2' z2='0' x9='x'>any</TriAngle></ELEMENT></other>
        <element owner="-2" name="&lt;&#233;&#xA;" id="+7" leaves="0" depth=""/></Triangle><owner/>)";
    const SceneContent content = ContentOfText<ICollisionConfiguration>(text);
    ASSERT_EQ(content.bodies.size(), 2U);
    EXPECT_EQ(content.bodies[0].triangles.size(), 2U);
    EXPECT_TRUE((content.bodies[0] == test::BodyContent{8, 5, "a", 2, content.bodies[0].triangles}));
    EXPECT_TRUE((content.bodies[1] == test::BodyContent{7, 0xfffffffffffffffeU, "<\xc3\xa9\n", 1, {}}));
    EXPECT_TRUE((content.couples == std::vector<test::CoupleContent>{{7, 8, 0}}))
        << "a couple of an unknown body is dropped";
}

TEST(Retrieve, TakesBlanksPlusSignsAndHexadecimalDigitsInNumbers) {
    for (const char* const value :
         {"1.5", " \t1.5 ", "&#10;1.5&#13;", "+1.5", "15e-1", "0x1.8", "+0X1.8p0"}) {
        const SceneContent content = ContentOfText<IProximityConfiguration>(
            Proximity(Element(With(kTriangle, "x0", value)) + With(kClearPair, "clearance", value)));
        EXPECT_EQ(content.bodies.at(0).triangles.at(0)[0], std::bit_cast<std::uint64_t>(1.5)) << value;
        EXPECT_EQ(content.couples.at(0).clearance, std::bit_cast<std::uint64_t>(1.5)) << value;
    }
    for (const char* const value : {"7", " 7 ", "+7", "0x7", "0007"}) {
        const std::string text = Collision(Element("", With(kElement, "id", value)));
        EXPECT_EQ(ContentOfText<ICollisionConfiguration>(text).bodies.at(0).id, 7U) << value;
    }
}

}  // namespace
}  // namespace tarn
