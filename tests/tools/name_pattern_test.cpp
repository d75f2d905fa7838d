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

}  // namespace
}  // namespace tarn::program
