#include "gltf_samples.h"
#include "program_run.h"

namespace tarn::program {
namespace {

class SceneProgram : public ProgramTest {
protected:
    void Record(const Words& options) const {
        Words arguments = {"record", level_, pair_, half_, "-o", scene_};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramRun run = RunTarn(arguments);
        EXPECT_EQ(run.status, 0) << run.errors;
    }

    // The upright triangle, and one that is none.
    const std::string pair_ =
        folder_.Write("pair.stl", TextStl({{2, 2, -5, 2, 2, 5, 12, 2, 0}, {0, 0, 0, 0, 0, 0, 1, 1, 1}}));
    const std::string scene_ = folder_.Path("scene.xml");
};

TEST_F(SceneProgram, AReplayFindsWhatACheckFinds) {
    const ProgramRun run = RunTarn({"record", level_, pair_, half_, "-o", scene_});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_TRUE(run.output.starts_with(scene_ + ": collision scene, 3 bodies, 3 triangles kept, 1 dropped, "
                                                "3 couples; loading "))
        << run.output;
    const Json checked = RunJson({"check", level_, pair_, half_}, 1);
    const Json replayed = RunJson({"replay", scene_}, 1);
    ASSERT_EQ(replayed["interferences"].size(), 1U);
    const Json& couple = replayed["interferences"][0];
    ExpectFields(couple, {{"first", {{"name", level_}, {"owner", "0"}}},
                          {"second", {{"name", pair_}, {"owner", "1"}}},
                          {"centre_mm", checked["interferences"][0]["centre_mm"]}});
    EXPECT_EQ(replayed["summary"]["triangles_dropped"], nullptr) << "a scene does not tell";
    EXPECT_EQ(RunTarn({"replay", scene_, "--quiet"}).output, "");

    Record({"--ignore", "pair.stl", "*"});
    EXPECT_EQ(RunJson({"replay", scene_}, 0)["summary"]["couples"], 1);
    Record({"--ignore", "*", "*", "--quiet"});
    EXPECT_TRUE(Contains(RunTarn({"replay", scene_}).errors, "the scene has no couples"));
}

TEST_F(SceneProgram, CouplesOfAProximitySceneHaveClearancesOfTheirOwn) {
    Record({"--clearance", "0.25", "--ignore", "pair.stl", "half.stl"});
    EXPECT_EQ(RunJson({"replay", scene_}, 1)["couples"].size(), 1U);
    folder_.Write("scene.xml", Replaced(ReadWholeFile(scene_), "first=\"1\" second=\"3\" clearance=\"0.25\"",
                                        "first=\"1\" second=\"3\" clearance=\"0.75\""));
    const Json replayed = RunJson({"replay", scene_}, 1);
    const Json& couples = replayed["couples"];
    ASSERT_EQ(CouplesIn(couples), (Words{level_ + " | " + pair_, level_ + " | " + half_}));
    ExpectFields(couples[0], {{"state", "intersecting"}, {"clearance_mm", 0.25}});
    ExpectFields(couples[1], {{"state", "too_near"}, {"clearance_mm", 0.75}, {"distance_mm", 0.5}});
    EXPECT_FALSE(replayed["summary"].contains("clearance_mm"));
    const std::string csv = RunTarn({"replay", scene_, "--format", "csv"}).output;
    EXPECT_TRUE(Contains(csv, "state,clearance_mm,distance_mm") && Contains(csv, ",too_near,0.75,0.5,"));
    const std::string table = RunTarn({"replay", scene_}).output;
    EXPECT_EQ(WordsOfLine(table, 2).at(3), "0.250") << table;
    ExpectFields(RunJson({"info", scene_}, 0)["summary"], {{"kind", "proximity scene"},
                                                           {"couples", 2},
                                                           {"least_clearance_mm", 0.25},
                                                           {"largest_clearance_mm", 0.75}});
}

TEST_F(SceneProgram, InfoTellsWhatIsInsideAndPlacementsAreBaked) {
    const Json of_mesh = RunJson({"info", pair_, "--unit", "cm"}, 0);
    ExpectFields(of_mesh["summary"], {{"kind", "mesh file"}, {"couples", 0}});
    ExpectFields(of_mesh["bodies"][0], {{"triangles_kept", 1},
                                        {"triangles_dropped", 1},
                                        {"min_mm", {20, 20, -50}},
                                        {"max_mm", {120, 20, 50}}});
    Record({});
    // Any name will do for what begins as a scene.
    std::filesystem::copy(scene_, folder_ / "scene");
    const Json of_scene = RunJson({"info", folder_.Path("scene")}, 0);
    ExpectFields(
        of_scene["summary"],
        {{"kind", "collision scene"}, {"owners", 3}, {"min_mm", {0, 0, -5}}, {"max_mm", {12, 10, 8}}});
    EXPECT_EQ(of_scene["bodies"][1]["triangles_dropped"], nullptr);
    EXPECT_TRUE(
        Contains(RunTarn({"info", scene_}).output, "\ncollision scene: 3 bodies, 3 triangles kept, "));

    const std::string moved = folder_.Write("moved.glb", Glb(SampleGltf(), SampleBuffer()));
    EXPECT_EQ(RunTarn({"record", moved, "-o", scene_}).status, 0);
    const Json placed = RunJson({"info", moved}, 0)["bodies"][0];
    ExpectFields(RunJson({"info", scene_}, 0)["bodies"][0],
                 {{"name", placed["name"]}, {"min_mm", placed["min_mm"]}, {"max_mm", placed["max_mm"]}});
}

TEST_F(SceneProgram, BadScenesAreOneLine) {
    Record({});
    const std::string scene = ReadWholeFile(scene_);
    const std::string unreadable = "bad.xml: is no scene that can be read (";
    for (const auto& [content, cause] :
         {std::pair<std::string, std::string>("", unreadable),
          {"garbage", unreadable},
          {scene.substr(0, scene.size() / 2), unreadable},
          {"<scene type=\"other\"/>", "bad.xml: is no scene (its type is neither"},
          {Replaced(scene, "first=\"1\"", "first=\"x\""), "'first' of 'pair' (line "}})
        ExpectFailure(RunTarn({"replay", folder_.Write("bad.xml", content)}), cause);
    ExpectFailure(RunTarn({"replay", scene_, "--output", scene_}), "is another of the files given");
    EXPECT_EQ(ReadWholeFile(scene_), scene);
}

}  // namespace
}  // namespace tarn::program
