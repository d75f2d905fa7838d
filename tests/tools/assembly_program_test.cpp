#include "gltf_samples.h"
#include "program_run.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <iomanip>

namespace tarn::program {
namespace {

using Couples = std::vector<std::pair<std::size_t, std::size_t>>;

const char* const kParts[] = {"robot/left/turn/bolt", "robot/left/turn/plate, 5\" wide",
                              "robot/right/turn/bolt", "robot/right/turn/plate, 5\" wide", "robot/turn/base"};

/// "Robot" holds "left" and "right", each of them a "bolt" and a "plate, 5\" wide", and a lone "base". All
/// five bodies share the sample's mesh, each turned a little more, so that every couple crosses.
class AssemblyProgram : public testing::Test {
protected:
    static Json Robot() {
        Json gltf = SampleGltf();
        gltf["nodes"] = Json::parse(R"([
            {"name": "robot", "children": [1, 2, 8]},
            {"name": "left", "children": [9, 10]}, {"name": "right", "children": [11, 12]},
            {"name": "base"}, {"name": "bolt"}, {"name": "plate, 5\" wide"}, {"name": "bolt"},
            {"name": "plate, 5\" wide"}])");
        for (std::size_t node = 3; node < 8; ++node) {
            const double angle = 0.3 * static_cast<double>(node);
            gltf["nodes"][node]["mesh"] = 0;
            gltf["nodes"][node]["translation"] = {-0.3, -0.4, 0};
            gltf["nodes"].push_back({{"name", "turn"},
                                     {"children", {node}},
                                     {"rotation", {std::sin(angle), 0, 0, std::cos(angle)}}});
        }
        return gltf;
    }

    ProgramRun Check(Words options) const {
        options.insert(options.begin(), {"check", robot_});
        return RunTarn(options);
    }

    /// The interfering couples of all that are chosen, in the order of the report, each by the numbers of its
    /// parts, the smaller first. Both commands choose the same.
    Couples InterferingOf(const Words& options) const {
        Words checking = {"check", robot_};
        checking.insert(checking.end(), options.begin(), options.end());
        const Json checked = RunJson(checking, 1);
        Words measuring = {"clearance", robot_, "--clearance", "0.1"};
        measuring.insert(measuring.end(), options.begin(), options.end());
        const Json measured = RunJson(measuring, 1);
        EXPECT_EQ(measured["summary"]["couples"], checked["summary"]["couples"]);
        Couples couples = CouplesOf(checked["interferences"]);
        Couples nearest_first = CouplesOf(measured["couples"]);
        std::ranges::sort(nearest_first);
        EXPECT_EQ(nearest_first, couples);
        return couples;
    }

    static std::size_t NumberOf(const Json& part) {
        return static_cast<std::size_t>(std::ranges::find(kParts, part["name"]) - std::begin(kParts));
    }
    static Couples CouplesOf(const Json& reported) {
        Couples couples;
        for (const Json& couple : reported)
            couples.push_back(std::minmax({NumberOf(couple["first"]), NumberOf(couple["second"])}));
        return couples;
    }

    const TemporaryFolder folder_;
    const std::string robot_ = folder_.Write("robot.glb", Glb(Robot(), SampleBuffer()));
};

TEST_F(AssemblyProgram, CouplesAreChosenByOwnersAndPatternsAndReportedInTheOrderOfTheParts) {
    // All couples of two parts for whose numbers the condition holds.
    const auto where = [](auto holds) {
        Couples couples;
        for (std::size_t i = 0; i < std::size(kParts); ++i) {
            for (std::size_t j = i + 1; j < std::size(kParts); ++j) {
                if (holds(i, j)) couples.emplace_back(i, j);
            }
        }
        return couples;
    };
    const auto is_bolt = [](std::size_t part) { return part == 0 || part == 2; };
    const Couples all = where([](auto, auto) { return true; });
    const Couples between = where([](auto i, auto j) { return i / 2 != j / 2; });
    const std::vector<std::pair<Words, Couples>> cases = {
        {{}, all},
        {{"--within-owners"}, where([](auto i, auto j) { return i / 2 == j / 2; })},
        {{"--between-owners"}, between},
        {{"--against", "base"}, where([](auto, auto j) { return j == 4; })},
        {{"--against", "robot/left"}, where([](auto i, auto) { return i < 2; })},
        {{"--against", "bolt"}, where([&](auto i, auto j) { return is_bolt(i) || is_bolt(j); })},
        {{"--against", "*"}, all},
        {{"--ignore", "plate*", "*", "--ignore", "*", "base"}, {{0, 2}}},
        {{"--ignore", "*", "plate*", "--ignore", "base", "*"}, {{0, 2}}},
        {{"--against", "base", "--ignore", "left", "base"}, {{2, 4}, {3, 4}}},
        {{"--ignore", "left", "left", "--ignore", "right", "right"}, between},
    };
    for (const auto& [options, expected] : cases)
        EXPECT_EQ(InterferingOf(options), expected) << testing::PrintToString(options);
    const ProgramRun files_behind = RunTarn({"check", "--ignore", "nut", "*", robot_, robot_});
    EXPECT_TRUE(Contains(files_behind.output, "10 bodies")) << "files behind the patterns are files";
    EXPECT_EQ(Check({"--ignore", "[a,b]"}).status, 2) << "one pattern is not two";
    EXPECT_EQ(Check({"--ignore", "", "x"}).status, 2);
}

TEST_F(AssemblyProgram, OutputsDestroyNoInputAndNotEachOther) {
    const std::string before = ReadWholeFile(robot_);
    const std::string same = folder_.Path("same");
    const std::string link = folder_.Path("link");
    std::filesystem::create_symlink("robot.glb", link);
    for (const Words& outputs :
         {Words{"--output", robot_}, Words{"--dump-stl", link},
          Words{"--output", folder_.Path("./robot.glb")}, Words{"--output", same, "--dump-stl", same}})
        ExpectFailure(Check(outputs), "is another of the files given");
    EXPECT_EQ(ReadWholeFile(robot_), before);
    EXPECT_FALSE(std::filesystem::exists(same));
    EXPECT_EQ(Check({"--output", "/dev/null", "--dump-stl", "/dev/null"}).status, 1)
        << "what is written there destroys nothing";
}

TEST_F(AssemblyProgram, PatternsThatMatchNothingAreSaid) {
    ExpectFailure(Check({"--against", "nut"}), "--against: no part or owner is named 'nut'\n");
    const ProgramRun ignore = Check({"--ignore", "nut", "*"});
    EXPECT_EQ(ignore.status, 1);
    EXPECT_EQ(ignore.errors, "tarn: warning: --ignore: no part or owner is named 'nut'\n");
    const ProgramRun nothing = Check({"--ignore", "*", "*"});
    EXPECT_EQ(nothing.status, 0);
    EXPECT_TRUE(Contains(nothing.errors, "nothing is checked")) << nothing.errors;
}

TEST_F(AssemblyProgram, FormatsTellTheSame) {
    const Json json = RunJson({"check", robot_, "--against", "base"}, 1);
    ExpectFields(json["summary"], {{"bodies", 5},
                                   {"triangles_kept", 10},
                                   {"couples", 4},
                                   {"interfering", 4},
                                   {"stopped_at_first", false}});

    const std::string csv = Check({"--format", "csv", "--against", "base"}).output;
    const std::string table = Check({"--against", "base"}).output;
    const auto digits = [](const Json& number) {
        const std::string text = number.dump();
        return text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
    };
    for (const Json& couple : json["interferences"]) {
        std::ostringstream row;
        for (const auto& [side, key] :
             {std::pair("first", "name"), {"second", "name"}, {"first", "owner"}, {"second", "owner"}}) {
            const auto name = couple[side][key].get<std::string>();
            if (Contains(name, ",")) {
                row << std::quoted(name, '"', '"') << ',';
            } else {
                row << name << ',';
            }
        }
        // The same digits, and the table's rounded ones.
        const Json& centre = couple["centre_mm"];
        row << digits(centre[0]) << ',' << digits(centre[1]) << ',' << digits(centre[2]) << '\n';
        EXPECT_TRUE(Contains(csv, row.str())) << row.str() << csv;
        for (const double value : centre.get<std::array<double, 3>>()) {
            std::array<char, 32> rounded{};
            std::snprintf(rounded.data(), rounded.size(), "%.3f", value);
            EXPECT_TRUE(std::abs(value) < 0.0005 || Contains(table, rounded.data())) << rounded.data();
        }
    }
    EXPECT_EQ(LineCount(csv), 5);
    EXPECT_TRUE(Contains(table, "left/turn/bolt ") && !Contains(table, "robot/")) << table;

    const Json first = RunJson({"check", robot_, "--policy", "first"}, 1);
    EXPECT_EQ(first["interferences"][0]["centre_mm"], nullptr);
    EXPECT_EQ(first["summary"]["stopped_at_first"], true);

    // A file takes the report, and the summary stays.
    const std::string path = folder_.Write("report", "older");
    const ProgramRun run = Check({"--format", "csv", "--against", "base", "--output", path});
    EXPECT_TRUE(run.output.starts_with("5 bodies, ")) << run.output;
    EXPECT_EQ(ReadWholeFile(path), csv);
    EXPECT_EQ(Check({"--quiet", "--output", path}).output, "");
    EXPECT_TRUE(Contains(ReadWholeFile(path), "\n5 bodies, "));
}

TEST_F(AssemblyProgram, SeveralFilesAreTheOwnersOfTheirBodies) {
    const std::string part =
        folder_.Write("part.stl", TextStl({{-500, -1000, -10, 1000, 1000, 20, 500, 900, -50}}));
    const std::string objects =
        folder_.Write("two.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\no a\nf 1 2 3\no b\nf 1 2 3\n");
    const Json json = RunJson({"check", robot_, part, objects, "--within-owners"}, 1);
    ExpectFields(json["summary"], {{"bodies", 8}, {"couples", 11}});
    ExpectFields(json["interferences"][0]["first"],
                 {{"name", robot_ + "/robot/left/turn/bolt"}, {"owner", robot_}});
    // Metres beside metres: the OBJ file has the unit that it is given, the glTF file its own.
    const std::string dump = folder_.Path("dump.stl");
    EXPECT_EQ(RunTarn({"check", robot_, objects, "--unit", "m", "--dump-stl", dump}).errors, "");
    EXPECT_TRUE(Contains(ReadWholeFile(dump), "vertex 1000 0 0"));
    EXPECT_EQ(RunJson({"check", objects, "--between-owners"}, 0)["summary"]["couples"], 1);
}

}  // namespace
}  // namespace tarn::program
