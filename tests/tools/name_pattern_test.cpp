#include "name_pattern.h"

#include "short_names.h"

#include <gtest/gtest.h>

namespace tarn::program {
namespace {

TEST(NamePattern, MatchesTheNameOrAllBehindASlash) {
    const std::string name = "frame/left/bolt [3]";
    for (const char* const pattern : {"frame/left/bolt [3]", "left/bolt [3]", "bolt*", "*", "**", "*bolt*",
                                      "b?lt*", "fr*3]", "f*e/*t*[?]", "*left*", "*/*/*", "left/*"}) {
        EXPECT_TRUE(NamePattern(pattern).Matches(name)) << pattern;
    }
    for (const char* const pattern : {"", "bolt", "frame", "frame/left", "olt [3]", "?", "*bolt", "bolt [*]?",
                                      "*/*/*/*", "Bolt*", "/bolt*", "bolt 3"}) {
        EXPECT_FALSE(NamePattern(pattern).Matches(name)) << pattern;
    }
    EXPECT_FALSE(NamePattern(std::string(2000, '*') + "x").Matches(std::string(2000, 'y')));
}

TEST(ShortNames, AreTheShortestEndingsThatNoOtherNameHas) {
    std::vector<Part> parts;
    for (const char* const name :
         {"a/bolt", "a/nut", "b/bolt", "c/b/bolt", "nut", "x/y/z", "folder/whole.stl"}) {
        parts.push_back({name, 0, {0}, {}, false});
    }
    parts.back().is_whole_file = true;
    EXPECT_EQ(ShortNames(parts), (std::vector<std::string>{"a/bolt", "a/nut", "b/bolt", "c/b/bolt", "nut",
                                                           "z", "folder/whole.stl"}));
}

TEST(ShortNames, OfNamesThatEndInASlashAreNeverEmpty) {
    std::vector<Part> parts;
    for (const char* const name : {"a/", "/", "//", "b/c", "x/c", "", "d!", "e/d!", "d"})
        parts.push_back({name, 0, {0}, {}, false});
    EXPECT_EQ(ShortNames(parts),
              (std::vector<std::string>{"a/", "/", "//", "b/c", "x/c", "", "d!", "e/d!", "d"}));
    EXPECT_EQ(ShortNames({{"a/", 0, {0}, {}, false}}), std::vector<std::string>{"a/"});
    EXPECT_EQ(ShortNames({{"a//", 0, {0}, {}, false}, {"a/", 0, {0}, {}, false}}),
              (std::vector<std::string>{"/", "a/"}));
}

TEST(ShortNames, OfManyNamesFullOfSlashesAreFoundWithoutAnEntryForEach) {
    std::string path;
    for (int level = 0; level < 1300; ++level) path += "ab/";
    std::vector<Part> parts;
    parts.reserve(5000);
    for (int part = 0; part < 5000; ++part) parts.push_back({path + std::to_string(part), 0, {0}, {}, false});
    EXPECT_EQ(ShortNames(parts).at(1234), "1234");
}

}  // namespace
}  // namespace tarn::program
