#include "gltf_samples.h"
#include "program_expectations.h"
#include "readers/file_content.h"
#include "stl_samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace tarn::program {
namespace {

using Names = std::set<std::string>;

std::string QuotedField(const std::string& name) {
    std::string field(1, '"');
    return field.append(Replaced(name, "\"", "\"\"")).append(1, '"');
}

/// "Robot" holds "left" and "right", each of them a "bolt" and a "plate, 5\" wide", and a lone "base". All
/// five bodies share the sample's mesh, each turned a little more, so that every couple crosses.
class AssemblyProgram : public testing::Test {
protected:
    static Json Robot() {
        Json gltf = SampleGltf();
        gltf["nodes"] = Json::parse(R"([
            {"name": "robot", "children": [1, 2, 3]},
            {"name": "left", "children": [4, 5]}, {"name": "right", "children": [6, 7]},
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
        gltf["nodes"][0]["children"] = {1, 2, 8};
        gltf["nodes"][1]["children"] = {9, 10};
        gltf["nodes"][2]["children"] = {11, 12};
        return gltf;
    }

    ProgramRun Check(std::vector<std::string> options) const {
        options.insert(options.begin(), {"check", robot_});
        return RunTarn(options);
    }

    static Names NamesOf(const Json& couples) {
        Names names;
        for (const Json& couple : couples) {
            names.insert(couple["first"]["name"].get<std::string>() + " | " +
                         couple["second"]["name"].get<std::string>());
        }
        return names;
    }

    /// The interfering couples, each as "first | second", in the program's JSON. Both commands choose the
    /// same.
    Names Couples(std::vector<std::string> options) const {
        options.insert(options.end(), {"--format", "json"});
        const Json checked = Json::parse(Check(options).output);
        options.insert(options.begin(), {"clearance", robot_, "--clearance", "0.1"});
        const Json measured = Json::parse(RunTarn(options).output);
        EXPECT_EQ(measured["summary"]["couples"], checked["summary"]["couples"]);
        EXPECT_EQ(NamesOf(measured["couples"]), NamesOf(checked["interferences"]));
        return NamesOf(checked["interferences"]);
    }

    const TemporaryFolder folder_;
    const std::string robot_ = folder_.Write("robot.glb", Glb(Robot(), SampleBuffer()));
    const std::string left_bolt_ = "robot/left/turn/bolt";
    const std::string left_plate_ = "robot/left/turn/plate, 5\" wide";
    const std::string right_bolt_ = "robot/right/turn/bolt";
    const std::string right_plate_ = "robot/right/turn/plate, 5\" wide";
    const std::string base_ = "robot/turn/base";
};

TEST_F(AssemblyProgram, CouplesAreChosenByOwnersAndPatterns) {
    const Names all = Couples({});
    ASSERT_EQ(all.size(), 10U);
    const Names within = {left_bolt_ + " | " + left_plate_, right_bolt_ + " | " + right_plate_};
    Names between;
    std::ranges::set_difference(all, within, std::inserter(between, between.end()));
    EXPECT_EQ(Couples({"--within-owners"}), within);
    EXPECT_EQ(Couples({"--between-owners"}), between);

    const Names ends_in_bolt = {left_bolt_ + " | " + right_bolt_};
    EXPECT_EQ(Couples({"--against", "base"}).size(), 4U);
    EXPECT_EQ(Couples({"--against", "robot/left"}).size(), 7U);
    EXPECT_EQ(Couples({"--against", "bolt"}).size(), 7U);
    EXPECT_EQ(Couples({"--against", "*"}), all);
    EXPECT_EQ(Couples({"--ignore", "plate*", "*", "--ignore", "*", "base"}), ends_in_bolt);
    EXPECT_EQ(Couples({"--ignore", "*", "plate*", "--ignore", "base", "*"}), ends_in_bolt);
    EXPECT_EQ(Couples({"--against", "base", "--ignore", "left", "base"}).size(), 2U);
    EXPECT_EQ(Couples({"--ignore", "left", "left", "--ignore", "right", "right"}), between);
    const ProgramRun files_behind = RunTarn({"check", "--ignore", "nut", "*", robot_, robot_});
    EXPECT_TRUE(Contains(files_behind.output, "10 bodies")) << "files behind the patterns are files";
    EXPECT_EQ(Check({"--ignore", "[a,b]"}).status, 2) << "one pattern is not two";
    EXPECT_EQ(Check({"--ignore", "", "x"}).status, 2);
}

TEST_F(AssemblyProgram, CouplesAreReportedInTheOrderOfThePartsWhateverTheChoice) {
    const auto interferences = [this](std::vector<std::string> options) {
        options.insert(options.end(), {"--format", "json"});
        return Json::parse(Check(options).output).at("interferences");
    };
    // All couples of the five parts interfere, so the first four couples have the parts in their order.
    const Json all = interferences({});
    std::vector<Json> order{all[0]["first"]["name"]};
    for (std::size_t i = 0; i < 4; ++i) order.push_back(all[i]["second"]["name"]);
    const auto number = [&order](const Json& part) {
        return std::ranges::find(order, part["name"]) - order.begin();
    };
    for (const std::vector<std::string>& choice :
         std::vector<std::vector<std::string>>{{},
                                               {"--against", "bolt"},
                                               {"--ignore", "base", "base"},
                                               {"--ignore", "*bolt", "*plate*"},
                                               {"--between-owners"}}) {
        std::vector<std::pair<std::ptrdiff_t, std::ptrdiff_t>> reported;
        for (const Json& couple : interferences(choice)) {
            reported.push_back(std::minmax({number(couple["first"]), number(couple["second"])}));
        }
        EXPECT_TRUE(std::ranges::is_sorted(reported));
        EXPECT_GT(reported.size(), 2U);
    }
}

TEST_F(AssemblyProgram, OutputsDestroyNoInputAndNotEachOther) {
    const std::string before = ReadWholeFile(robot_);
    const std::string same = (folder_ / "same").string();
    for (const std::vector<std::string>& outputs : std::vector<std::vector<std::string>>{
             {"--output", robot_}, {"--dump-stl", robot_}, {"--output", same, "--dump-stl", same}}) {
        const ProgramRun run = Check(outputs);
        EXPECT_EQ(run.status, 2);
        EXPECT_TRUE(Contains(run.errors, "is another of the files given")) << run.errors;
    }
    EXPECT_EQ(ReadWholeFile(robot_), before);
    EXPECT_FALSE(std::filesystem::exists(same));
}

TEST_F(AssemblyProgram, PatternsThatMatchNothingAreSaid) {
    const ProgramRun against = Check({"--against", "nut"});
    EXPECT_EQ(against.status, 2);
    EXPECT_EQ(against.errors, "tarn: --against: no part or owner is named 'nut'\n");
    const ProgramRun ignore = Check({"--ignore", "nut", "*"});
    EXPECT_EQ(ignore.status, 1);
    EXPECT_EQ(ignore.errors, "tarn: warning: --ignore: no part or owner is named 'nut'\n");
    const ProgramRun nothing = Check({"--ignore", "*", "*"});
    EXPECT_EQ(nothing.status, 0);
    EXPECT_TRUE(Contains(nothing.errors, "nothing is checked")) << nothing.errors;
    for (const std::vector<std::string>& options :
         std::vector<std::vector<std::string>>{{"--between-owners", "--within-owners"},
                                               {"--against", "base", "--within-owners"},
                                               {"--between-owners", "--against", "base"},
                                               {"--against", ""},
                                               {"--ignore", "one"},
                                               {"--format", "xml"},
                                               {"--output", ""}}) {
        const ProgramRun run = Check(options);
        EXPECT_EQ(run.status, 2) << options[0];
        EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1) << run.errors;
    }
}

TEST_F(AssemblyProgram, FormatsTellTheSame) {
    const ProgramRun json_run = Check({"--format", "json", "--against", "base"});
    const Json json = Json::parse(json_run.output);
    EXPECT_EQ(json_run.status, 1);
    EXPECT_EQ(json["summary"]["bodies"], 5);
    EXPECT_EQ(json["summary"]["triangles_kept"], 10);
    EXPECT_EQ(json["summary"]["couples"], 4);
    EXPECT_EQ(json["summary"]["interfering"], 4);
    EXPECT_EQ(json["summary"]["stopped_at_first"], false);

    const std::string csv = Check({"--format", "csv", "--against", "base"}).output;
    const std::string table = Check({"--against", "base"}).output;
    for (const Json& couple : json["interferences"]) {
        std::string row;
        for (const auto& [side, key] :
             {std::pair("first", "name"), {"second", "name"}, {"first", "owner"}, {"second", "owner"}}) {
            const auto name = couple[side][key].get<std::string>();
            row.append(Contains(name, ",") ? QuotedField(name) : name).append(",");
        }
        ASSERT_NE(csv.find(row), std::string::npos) << row << "\n" << csv;
        // The same doubles, digit for digit, and the table's rounded ones.
        std::string digits = csv.substr(csv.find(row) + row.size());
        std::ranges::replace(digits, ',', ' ');
        std::istringstream numbers(digits);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            double value = 0;
            numbers >> value;
            EXPECT_EQ(value, couple["centre_mm"][axis].get<double>());
            std::ostringstream rounded;
            rounded << std::fixed;
            rounded.precision(3);
            rounded << value;
            EXPECT_TRUE(std::abs(value) < 0.0005 || Contains(table, rounded.str())) << rounded.str();
        }
    }
    EXPECT_EQ(std::ranges::count(csv, '\n'), 5);
    EXPECT_TRUE(Contains(table, "left/turn/bolt ") && !Contains(table, "robot/")) << table;

    const ProgramRun first = Check({"--format", "json", "--policy", "first"});
    EXPECT_EQ(Json::parse(first.output)["interferences"][0]["centre_mm"], nullptr);
    EXPECT_EQ(Json::parse(first.output)["summary"]["stopped_at_first"], true);
}

TEST_F(AssemblyProgram, TheReportGoesToAFileWholeOrNotAtAll) {
    const std::string path = folder_.Write("report.json", "older");
    const ProgramRun run = Check({"--format", "json", "--output", path});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.output.starts_with("5 bodies, ")) << run.output;
    const std::string written = ReadWholeFile(path);
    EXPECT_EQ(Json::parse(written)["interferences"].size(), 10U);
    EXPECT_EQ(Check({"--quiet", "--output", path}).output, "");
    EXPECT_TRUE(Contains(ReadWholeFile(path), "\n5 bodies, "));

    const std::string table = ReadWholeFile(path);
    const ProgramRun full =
        RunTarn({"check", robot_, "--format", "json", "--output", path}, "trap '' XFSZ; ulimit -f 1; ");
    EXPECT_EQ(full.status, 2);
    EXPECT_TRUE(Contains(full.errors, "report.json: cannot be written (File too large)")) << full.errors;
    EXPECT_EQ(ReadWholeFile(path), table);
    EXPECT_EQ(Check({"--output", path + "/below"}).status, 2);
    EXPECT_EQ(folder_.FileCount(), 2U);
}

TEST_F(AssemblyProgram, SeveralFilesAreTheOwnersOfTheirBodies) {
    const std::string part =
        folder_.Write("part.stl", TextStl({{-500, -1000, -10, 1000, 1000, 20, 500, 900, -50}}));
    const std::string objects =
        folder_.Write("two.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\no a\nf 1 2 3\no b\nf 1 2 3\n");
    const ProgramRun run = RunTarn({"check", robot_, part, objects, "--format", "json", "--within-owners"});
    const Json json = Json::parse(run.output);
    EXPECT_EQ(json["summary"]["bodies"], 8);
    EXPECT_EQ(json["summary"]["couples"], 11);
    EXPECT_EQ(json["interferences"][0]["first"]["name"], robot_ + "/" + left_bolt_);
    EXPECT_EQ(json["interferences"][0]["first"]["owner"], robot_);
    // Metres beside metres: the OBJ file has the unit that it is given, the glTF file its own.
    const std::string in_metres =
        RunTarn({"check", robot_, objects, "--unit", "m", "--dump-stl", (folder_ / "dump.stl").string()})
            .errors;
    EXPECT_EQ(in_metres, "");
    EXPECT_TRUE(Contains(ReadWholeFile(folder_ / "dump.stl"), "vertex 1000 0 0"));
    const ProgramRun alone =
        RunTarn({"check", objects, "--unit", "m", "--between-owners", "--format", "json"});
    EXPECT_EQ(Json::parse(alone.output)["summary"]["couples"], 1);
}

}  // namespace
}  // namespace tarn::program
