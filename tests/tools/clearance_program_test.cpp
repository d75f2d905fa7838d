#include "data_folder.h"
#include "gltf_samples.h"
#include "program_expectations.h"
#include "stl_samples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <tuple>

namespace tarn::program {
namespace {

using Words = std::vector<std::string>;

// One triangle in each part. Those above the level one, which lies in z = 0, are nearest at their first
// corners.
class ClearanceProgram : public testing::Test {
protected:
    std::string Write(const std::string& name, const tarn::TriangleData& triangle) const {
        return folder_.Write(name, TextStl({triangle}));
    }

    ProgramRun Measure(const Words& files, const std::string& clearance, const Words& options = {}) const {
        Words arguments = {"clearance", "--clearance", clearance};
        arguments.insert(arguments.end(), files.begin(), files.end());
        arguments.insert(arguments.end(), options.begin(), options.end());
        return RunTarn(arguments);
    }

    /// The couples of the level part with all others, in which it comes first, though its file comes last.
    ProgramRun MeasureAll(Words options = {}) const {
        options.insert(options.end(), {"--against", "level.stl"});
        return Measure({far_, around_, half_, third_, upright_, resting_, level_}, "3", options);
    }

    const TemporaryFolder folder_;
    const std::string level_ = Write("level.stl", {0, 0, 0, 10, 0, 0, 0, 10, 0});
    const std::string upright_ = Write("upright.stl", {2, 2, -5, 2, 2, 5, 12, 2, 0});
    const std::string resting_ = Write("resting.stl", {3, 0, 0.02, 13, 0, 0.02, 3, 10, 0.02});
    const std::string third_ = Write("third.stl", {2, 1, 1 / 3.0, 9, 1, 8, 1, 9, 8});
    const std::string half_ = Write("half.stl", {3, 4, 0.5, 9, 1, 8, 1, 9, 8});
    // Its box and the level part's have one centre, so nothing is nearer than the centres. The two are 2.4
    // apart.
    const std::string around_ = Write("around.stl", {11, -1, -3, 11, 11, 3, -1, 11, -3});
    const std::string far_ = Write("far.stl", {0, 0, 50, 10, 0, 50, 0, 10, 50});
};

TEST_F(ClearanceProgram, ListsCouplesNearestFirst) {
    const ProgramRun run = MeasureAll();
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(std::ranges::count(run.output, '\n'), 7) << run.output;
    const std::vector<Words> rows = {
        {upright_, "intersecting", "-", "-", "-", "-", "-", "-", "-"},
        {resting_, "touching", "-", "-", "-", "-", "-", "-", "-"},
        {third_, "too", "near", "0.333", "2.000", "1.000", "0.000", "2.000", "1.000", "0.333"},
        {half_, "too", "near", "0.500", "3.000", "4.000", "0.000", "3.000", "4.000", "0.500"},
        {around_, "not", "judged", "-", "-", "-", "-", "-", "-", "-"},
    };
    int line = 2;
    for (Words row : rows) {
        row.insert(row.begin(), level_);
        EXPECT_EQ(WordsOfLine(run.output, line++), row);
    }
    EXPECT_TRUE(
        Contains(run.output,
                 "\n7 bodies, 7 triangles kept, 0 dropped, 6 couples offered, 1 intersecting, 1 touching, "
                 "2 too near, 1 not judged; loading "))
        << run.output;
    EXPECT_TRUE(run.errors.starts_with("tarn: warning: clearance: 1 couples are not judged")) << run.errors;
    EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1);
}

TEST_F(ClearanceProgram, CouplesThatAreAsNearKeepTheOrderOfTheParts) {
    const std::string twin = Write("twin.stl", {3, 4, 0.5, 9, 1, 8, 1, 9, 8});
    for (const Words& files : {Words{half_, twin, level_}, Words{twin, half_, level_}}) {
        const ProgramRun run = Measure(files, "1", {"--against", "level.stl"});
        EXPECT_EQ(WordsOfLine(run.output, 2)[1], files[0]);
        EXPECT_EQ(WordsOfLine(run.output, 3)[1], files[1]);
    }
}

TEST_F(ClearanceProgram, FormatsTellTheSameWithAllDigits) {
    const Json json = Json::parse(MeasureAll({"--format", "json"}).output);
    Json counts = json["summary"];
    for (const char* const key : {"loading_seconds", "building_seconds", "checking_seconds"})
        counts.erase(key);
    EXPECT_EQ(counts, Json::parse(R"({"bodies": 7, "triangles_kept": 7, "triangles_dropped": 0, "couples": 6,
        "clearance_mm": 3.0, "intersecting": 1, "touching": 1, "too_near": 2, "not_judged": 1})"));
    const std::vector<std::pair<std::string, std::string>> states = {{upright_, "intersecting"},
                                                                     {resting_, "touching"},
                                                                     {third_, "too_near"},
                                                                     {half_, "too_near"},
                                                                     {around_, "not_judged"}};
    ASSERT_EQ(json["couples"].size(), states.size());
    std::istringstream csv(MeasureAll({"--format", "csv"}).output);
    std::string line;
    std::getline(csv, line);
    EXPECT_EQ(line,
              "first,second,first_owner,second_owner,state,distance_mm,first_x_mm,first_y_mm,first_z_mm,"
              "second_x_mm,second_y_mm,second_z_mm");
    for (std::size_t i = 0; i < states.size(); ++i) {
        const auto& [part, state] = states[i];
        const Json& couple = json["couples"][i];
        EXPECT_EQ(couple["second"], Json({{"name", part}, {"owner", part}}));
        EXPECT_EQ(couple["state"], state);
        std::string numbers = ",,,,,,";
        if (state == "too_near") {
            const double z = part == third_ ? 1 / 3.0 : 0.5;
            EXPECT_DOUBLE_EQ(couple["distance_mm"].get<double>(), z);
            EXPECT_EQ(couple["second_point_mm"][2], z);
            EXPECT_EQ(couple["first_point_mm"][2], 0);
            numbers =
                part == third_ ? "0.3333333333333333,2,1,0,2,1,0.3333333333333333" : "0.5,3,4,0,3,4,0.5";
        } else {
            for (const char* const key : {"distance_mm", "first_point_mm", "second_point_mm"}) {
                EXPECT_EQ(couple[key], nullptr) << state;
            }
        }
        std::getline(csv, line);
        EXPECT_EQ(line, level_ + "," + part + "," + level_ + "," + part + "," + state + "," + numbers);
    }
    EXPECT_FALSE(std::getline(csv, line));
}

TEST_F(ClearanceProgram, OnlyWhatIsFoundMakesTheExitStatus) {
    const std::vector<std::tuple<std::string, std::string, int>> cases = {
        {upright_, "0", 1}, {resting_, "0.03", 1}, {half_, "0.501", 1}, {half_, "0.499", 0},
        {half_, "0", 0},    {far_, "49.9", 0},     {far_, "1e300", 1},  {around_, "3", 0},
    };
    for (const auto& [file, clearance, status] : cases) {
        EXPECT_EQ(Measure({level_, file}, clearance).status, status) << file << " " << clearance;
        const ProgramRun quiet = Measure({level_, file}, clearance, {"--quiet"});
        EXPECT_EQ(quiet.status, status);
        EXPECT_EQ(quiet.output + quiet.errors, "");
    }
    // The clearance is in millimetres, whatever the unit of the files.
    EXPECT_EQ(Measure({level_, half_}, "12.8", {"--unit", "in"}).status, 1);
    EXPECT_EQ(Measure({level_, half_}, "12.6", {"--unit", "in"}).status, 0);
}

TEST_F(ClearanceProgram, BadInputIsOneLine) {
    for (const char* const clearance :
         {"-1", "-1e-9", "nan", "-nan", "inf", "1e309", "x", "1mm", "1,5", "0x1", " 1"}) {
        ExpectFailure(Measure({level_, half_}, clearance),
                      std::string("--clearance: '") + clearance + "' is not a length in millimetres");
    }
    ExpectFailure(Measure({level_, half_}, ""), "--clearance");
    ExpectFailure(RunTarn({"clearance", level_, half_}), "--clearance is required");
    ExpectFailure(RunTarn({"clearance", "--clearance", "1"}), "FILE is required");
    ExpectFailure(Measure({level_, half_}, "1", {"--policy", "all"}), "--policy");
    ExpectFailure(Measure({level_, (folder_ / "missing.stl").string()}, "1"),
                  "missing.stl: cannot be opened");
    ExpectFailure(Measure({level_}, "1", {"--against", "nut"}), "--against: no part or owner is named 'nut'");
    ExpectFailure(RunTarn({"clearance", level_, half_, "--clearance", "1"}, "", "/dev/full"),
                  "standard output: cannot be written (No space");
    ExpectFailure(Measure({level_, half_}, "1", {"--output", level_}), "is another of the files given");
}

TEST_F(ClearanceProgram, DumpsAndHelpsAsCheckDoes) {
    const std::string measured = (folder_ / "measured.stl").string();
    const std::string checked = (folder_ / "checked.stl").string();
    Measure({level_, half_}, "1", {"--dump-stl", measured});
    RunTarn({"check", level_, half_, "--dump-stl", checked});
    EXPECT_EQ(ReadWholeFile(measured), ReadWholeFile(checked));
    EXPECT_TRUE(Contains(ReadWholeFile(measured), "vertex 3 4 0.5"));
    const ProgramRun help = RunTarn({"clearance", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(Contains(help.output, "not judged") && Contains(help.output, "below 0.001"));
}

TEST(ClearanceOfARealAssembly, FindsWhatInterferesAndWhatIsNear) {
    const std::filesystem::path file = DataFolder() / "so101_arm" / "so101_arm.glb";
    if (!std::filesystem::exists(file)) GTEST_SKIP() << "no file " << file;
    const auto run = [&file](const Words& arguments) {
        Words all = {arguments.front(), file.string(), "--format", "json"};
        all.insert(all.end(), arguments.begin() + 1, arguments.end());
        return Json::parse(RunTarn(all).output);
    };
    const Json json = run({"clearance", "--clearance", "5"});
    const auto names = [](const Json& couple) {
        return std::set<std::string>{couple["first"]["name"], couple["second"]["name"]};
    };
    std::set<std::set<std::string>> intersecting;
    double last = 0;
    for (const Json& couple : json["couples"]) {
        if (couple["state"] == "intersecting") intersecting.insert(names(couple));
        if (couple["state"] != "too_near") continue;
        const double distance = couple["distance_mm"];
        EXPECT_TRUE(last <= distance && distance <= 5) << couple;
        last = distance;
        double squared = 0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            squared += std::pow(
                couple["first_point_mm"][axis].get<double>() - couple["second_point_mm"][axis].get<double>(),
                2);
        }
        EXPECT_NEAR(std::sqrt(squared), distance, 1e-6) << couple;
    }
    EXPECT_GT(last, 2.5);
    std::set<std::set<std::string>> interfering;
    const Json checked = run({"check"});
    for (const Json& couple : checked["interferences"]) interfering.insert(names(couple));
    EXPECT_EQ(intersecting, interfering);
    EXPECT_EQ(run({"clearance", "--clearance", "5", "--threads", "1"})["couples"], json["couples"]);
}

}  // namespace
}  // namespace tarn::program
