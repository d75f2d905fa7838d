#include "data_folder.h"
#include "gltf_samples.h"
#include "program_expectations.h"
#include "stl_samples.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tarn::program {
namespace {

using Words = std::vector<std::string>;

Json RunJson(Words arguments, int status) {
    arguments.insert(arguments.end(), {"--format", "json"});
    const ProgramRun run = RunTarn(arguments);
    EXPECT_EQ(run.status, status) << arguments[0] << ": " << run.errors;
    return Json::parse(run.output);
}

Words NamesOf(const Json& couples) {
    Words names;
    for (const Json& couple : couples) {
        names.push_back(couple["first"]["name"].get<std::string>() + " | " +
                        couple["second"]["name"].get<std::string>() + " | " + couple.value("state", ""));
    }
    return names;
}

// The upright triangle cuts the level one; the near one lies half a millimetre above it.
class SceneProgram : public testing::Test {
protected:
    void Record(const Words& options) const {
        Words arguments = {"record", level_, upright_, near_, "-o", scene_};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramRun run = RunTarn(arguments);
        EXPECT_EQ(run.status, 0) << run.errors;
    }

    const TemporaryFolder folder_;
    const std::string level_ = folder_.Write("level.stl", TextStl({{0, 0, 0, 10, 0, 0, 0, 10, 0}}));
    const std::string upright_ =
        folder_.Write("upright.stl", TextStl({{2, 2, -5, 2, 2, 5, 12, 2, 0}, {0, 0, 0, 0, 0, 0, 1, 1, 1}}));
    const std::string near_ = folder_.Write("near.stl", TextStl({{0.5, 4, 0.5, 1, 9, 8, 0, 9, 8}}));
    const std::string scene_ = (folder_ / "scene.xml").string();
};

TEST_F(SceneProgram, AReplayFindsWhatACheckFinds) {
    const ProgramRun run = RunTarn({"record", level_, upright_, near_, "-o", scene_});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_TRUE(run.output.starts_with(scene_ + ": collision scene, 3 bodies, 3 triangles kept, 1 dropped, "
                                                "3 couples; loading "))
        << run.output;
    const Json checked = RunJson({"check", level_, upright_, near_}, 1);
    const Json replayed = RunJson({"replay", scene_}, 1);
    ASSERT_EQ(replayed["interferences"].size(), 1U);
    const Json& couple = replayed["interferences"][0];
    EXPECT_EQ(couple["first"], Json({{"name", level_}, {"owner", "0"}}));
    EXPECT_EQ(couple["second"], Json({{"name", upright_}, {"owner", "1"}}));
    EXPECT_EQ(couple["centre_mm"], checked["interferences"][0]["centre_mm"]);
    EXPECT_EQ(replayed["summary"]["triangles_dropped"], nullptr) << "a scene does not tell";
    EXPECT_EQ(RunTarn({"replay", scene_, "--quiet"}).output, "");

    Record({"--ignore", "upright.stl", "*"});
    EXPECT_EQ(RunJson({"replay", scene_}, 0)["summary"]["couples"], 1);
    Record({"--ignore", "*", "*", "--quiet"});
    EXPECT_TRUE(Contains(RunTarn({"replay", scene_}).errors, "the scene has no couples"));
}

TEST_F(SceneProgram, CouplesOfAProximitySceneHaveClearancesOfTheirOwn) {
    Record({"--clearance", "0.25", "--ignore", "upright.stl", "near.stl"});
    EXPECT_EQ(RunJson({"replay", scene_}, 1)["couples"].size(), 1U);
    std::string xml = Replaced(ReadWholeFile(scene_), "first=\"1\" second=\"3\" clearance=\"0.25\"",
                               "first=\"1\" second=\"3\" clearance=\"0.75\"");
    folder_.Write("scene.xml", xml);
    const Json replayed = RunJson({"replay", scene_}, 1);
    const Json& couples = replayed["couples"];
    ASSERT_EQ(NamesOf(couples),
              (Words{level_ + " | " + upright_ + " | intersecting", level_ + " | " + near_ + " | too_near"}));
    EXPECT_EQ(couples[0]["clearance_mm"], 0.25);
    EXPECT_EQ(couples[1]["clearance_mm"], 0.75);
    EXPECT_DOUBLE_EQ(couples[1]["distance_mm"].get<double>(), 0.5);
    EXPECT_FALSE(replayed["summary"].contains("clearance_mm"));
    const std::string csv = RunTarn({"replay", scene_, "--format", "csv"}).output;
    EXPECT_TRUE(Contains(csv, "state,clearance_mm,distance_mm") && Contains(csv, ",too_near,0.75,0.5,"));
    const std::string table = RunTarn({"replay", scene_}).output;
    EXPECT_EQ(WordsOfLine(table, 2).at(3), "0.250") << table;
    const Json summary = RunJson({"info", scene_}, 0)["summary"];
    EXPECT_EQ(summary["kind"], "proximity scene");
    EXPECT_EQ(summary["couples"], 2);
    EXPECT_EQ(summary["least_clearance_mm"], 0.25);
    EXPECT_EQ(summary["largest_clearance_mm"], 0.75);
}

TEST_F(SceneProgram, InfoTellsWhatIsInside) {
    const Json of_mesh = RunJson({"info", upright_, "--unit", "cm"}, 0);
    EXPECT_EQ(of_mesh["summary"]["kind"], "mesh file");
    EXPECT_EQ(of_mesh["summary"]["couples"], 0);
    const Json& body = of_mesh["bodies"][0];
    EXPECT_EQ(body["triangles_kept"], 1);
    EXPECT_EQ(body["triangles_dropped"], 1);
    EXPECT_EQ(body["min_mm"], Json({20, 20, -50}));
    EXPECT_EQ(body["max_mm"], Json({120, 20, 50}));
    Record({});
    // Any name will do for what begins as a scene.
    std::filesystem::copy(scene_, folder_ / "scene");
    const Json of_scene = RunJson({"info", (folder_ / "scene").string()}, 0);
    EXPECT_EQ(of_scene["summary"]["kind"], "collision scene");
    EXPECT_EQ(of_scene["summary"]["owners"], 3);
    EXPECT_EQ(of_scene["summary"]["min_mm"], Json({0, 0, -5}));
    EXPECT_EQ(of_scene["summary"]["max_mm"], Json({12, 10, 8}));
    EXPECT_EQ(of_scene["bodies"][1]["triangles_dropped"], nullptr);
    EXPECT_TRUE(
        Contains(RunTarn({"info", scene_}).output, "\ncollision scene: 3 bodies, 3 triangles kept, "));
}

TEST_F(SceneProgram, PlacementsAreBaked) {
    Json gltf = SampleGltf();
    gltf["nodes"][0]["translation"] = {1, 2, 3};
    const std::string file = folder_.Write("moved.glb", Glb(gltf, SampleBuffer()));
    EXPECT_EQ(RunTarn({"record", file, "-o", scene_}).status, 0);
    const Json of_mesh = RunJson({"info", file}, 0)["bodies"][0];
    const Json of_scene = RunJson({"info", scene_}, 0)["bodies"][0];
    EXPECT_EQ(of_scene["name"], of_mesh["name"]);
    EXPECT_EQ(of_scene["min_mm"], of_mesh["min_mm"]);
    EXPECT_EQ(of_scene["max_mm"], of_mesh["max_mm"]);
}

TEST_F(SceneProgram, BadInputIsOneLineAndNothingIsLost) {
    Record({});
    const std::string scene = ReadWholeFile(scene_);
    const auto replay = [this](const std::string& content) {
        return RunTarn({"replay", folder_.Write("bad.xml", content)});
    };
    ExpectFailure(RunTarn({"replay", (folder_ / "missing.xml").string()}),
                  "missing.xml: cannot be opened (No");
    ExpectFailure(RunTarn({"info", (folder_ / "missing.xml").string()}), "missing.xml: cannot be opened (No");
    ExpectFailure(RunTarn({"replay", (folder_ / "").string()}), ": is a folder");
    ExpectFailure(RunTarn({"replay", "/dev/null"}), "/dev/null: is no regular file");
    ExpectFailure(RunTarn({"replay", level_}), "level.stl: is no scene");
    for (const std::string& content : Words{"", "garbage", scene.substr(0, scene.size() / 2)})
        ExpectFailure(replay(content), "bad.xml: is no scene that can be read (");
    ExpectFailure(replay("<scene type=\"other\"/>"), "bad.xml: is no scene (its type is neither");
    ExpectFailure(replay(Replaced(scene, "first=\"1\"", "first=\"x\"")), "'first' of 'pair' (line ");

    ExpectFailure(RunTarn({"record", level_}), "--output is required");
    ExpectFailure(RunTarn({"record", level_, "-o", level_}), "is another of the files given");
    ExpectFailure(RunTarn({"record", level_, "-o", "/dev/full"}),
                  "/dev/full: cannot be written (No space left on device)");
    ExpectFailure(RunTarn({"record", level_, "-o", scene_ + "/below"}),
                  "below: cannot be written (Not a dir");
    ExpectFailure(RunTarn({"replay", scene_, "--output", scene_}), "is another of the files given");
    EXPECT_EQ(ReadWholeFile(scene_), scene);
    EXPECT_EQ(folder_.FileCount(), 5U) << "no temporary file is left";
}

// Baking puts the very triangles into the scene that a check puts there, but another tree over them. That
// changes no couple that interferes; which couples are measured to be too near, it can.
TEST(SceneOfARealAssembly, HasTheSameCouples) {
    const std::filesystem::path file = DataFolder() / "so101_arm" / "so101_arm.glb";
    if (!std::filesystem::exists(file)) GTEST_SKIP() << "no file " << file;
    const TemporaryFolder folder;
    const std::string scene = (folder / "scene.xml").string();
    EXPECT_EQ(RunTarn({"record", file.string(), "-o", scene}).status, 0);
    const Words checked = NamesOf(RunJson({"check", file.string()}, 1)["interferences"]);
    EXPECT_EQ(NamesOf(RunJson({"replay", scene}, 1)["interferences"]), checked);
    EXPECT_GT(checked.size(), 10U);
}

}  // namespace
}  // namespace tarn::program
