#include "program_run.h"

#include <tuple>

namespace tarn::program {
namespace {

// All parts above the level one are nearest to it at their first corners.
class ClearanceProgram : public ProgramTest {
protected:
    static ProgramRun Measure(const Words& files, const std::string& clearance, const Words& options = {}) {
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

    const std::string resting_ = Write("resting.stl", {3, 0, 0.02, 13, 0, 0.02, 3, 10, 0.02});
    const std::string third_ = Write("third.stl", {2, 1, 1 / 3.0, 9, 1, 8, 1, 9, 8});
    // Its box and the level part's have one centre, so nothing is nearer than the centres. The two are 2.4
    // apart.
    const std::string around_ = Write("around.stl", {11, -1, -3, 11, 11, 3, -1, 11, -3});
};

TEST_F(ClearanceProgram, ListsCouplesNearestFirstInEveryFormat) {
    struct Row {
        std::string part;
        std::string state;
        Words table;
        std::string csv;
        Json numbers;  // distance, first point, second point
    };
    const Words none(7, "-");
    const Json nulls = {nullptr, nullptr, nullptr};
    const Words third = {"0.333", "2.000", "1.000", "0.000", "2.000", "1.000", "0.333"};
    const Words half = {"0.500", "3.000", "4.000", "0.000", "3.000", "4.000", "0.500"};
    const std::vector<Row> rows = {
        {upright_, "intersecting", none, ",,,,,,", nulls},
        {resting_, "touching", none, ",,,,,,", nulls},
        {third_,
         "too near",
         third,
         "0.3333333333333333,2,1,0,2,1,0.3333333333333333",
         {1 / 3.0, {2, 1, 0}, {2, 1, 1 / 3.0}}},
        {half_, "too near", half, "0.5,3,4,0,3,4,0.5", {0.5, {3, 4, 0}, {3, 4, 0.5}}},
        {around_, "not judged", none, ",,,,,,", nulls},
    };
    const ProgramRun run = MeasureAll();
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(LineCount(run.output), 7) << run.output;
    EXPECT_TRUE(
        Contains(run.output,
                 "\n7 bodies, 7 triangles kept, 0 dropped, 6 couples offered, 1 intersecting, 1 touching, "
                 "2 too near, 1 not judged; loading "))
        << run.output;
    EXPECT_TRUE(run.errors.starts_with("tarn: warning: clearance: 1 couples are not judged")) << run.errors;
    EXPECT_EQ(LineCount(run.errors), 1);
    const Json json = Json::parse(MeasureAll({"--format", "json"}).output);
    Json counts = json["summary"];
    for (const char* const key : {"loading_seconds", "building_seconds", "checking_seconds"})
        counts.erase(key);
    EXPECT_EQ(counts, Json::parse(R"({"bodies": 7, "triangles_kept": 7, "triangles_dropped": 0, "couples": 6,
        "clearance_mm": 3.0, "intersecting": 1, "touching": 1, "too_near": 2, "not_judged": 1})"));
    ASSERT_EQ(json["couples"].size(), rows.size());

    std::ostringstream csv;
    csv << "first,second,first_owner,second_owner,state,distance_mm,first_x_mm,first_y_mm,first_z_mm,"
           "second_x_mm,second_y_mm,second_z_mm\n";
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto& [part, state, table, csv_numbers, json_numbers] = rows[i];
        Words words = {level_, part};
        std::istringstream state_words(state);
        for (std::string word; state_words >> word;) words.push_back(word);
        words.insert(words.end(), table.begin(), table.end());
        EXPECT_EQ(WordsOfLine(run.output, static_cast<int>(i) + 2), words);

        std::string key = state;
        std::ranges::replace(key, ' ', '_');
        csv << level_ << ',' << part << ',' << level_ << ',' << part << ',' << key << ',' << csv_numbers
            << '\n';
        EXPECT_EQ(json["couples"][i], Json({{"first", {{"name", level_}, {"owner", level_}}},
                                            {"second", {{"name", part}, {"owner", part}}},
                                            {"state", key},
                                            {"distance_mm", json_numbers[0]},
                                            {"first_point_mm", json_numbers[1]},
                                            {"second_point_mm", json_numbers[2]}}));
    }
    EXPECT_EQ(MeasureAll({"--format", "csv"}).output, csv.str());
}

TEST_F(ClearanceProgram, CouplesThatAreAsNearKeepTheOrderOfTheParts) {
    const std::string twin = folder_.Write("twin.stl", ReadWholeFile(half_));
    for (const Words& files : {Words{half_, twin, level_}, Words{twin, half_, level_}}) {
        const ProgramRun run = Measure(files, "1", {"--against", "level.stl"});
        EXPECT_EQ(WordsOfLine(run.output, 2).at(1), files[0]);
        EXPECT_EQ(WordsOfLine(run.output, 3).at(1), files[1]);
    }
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

}  // namespace
}  // namespace tarn::program
