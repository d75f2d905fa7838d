#include "program_expectations.h"
#include "readers/file_content.h"
#include "readers/stl_reader.h"
#include "stl_samples.h"

#include "tarn/version.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace tarn::program {
namespace {

// The upright triangle cuts the level one from (2, 2, 0) to (8, 2, 0): the one lies in y = 2, the other in z
// = 0.
constexpr tarn::TriangleData kLevel = {0, 0, 0, 10, 0, 0, 0, 10, 0};
constexpr tarn::TriangleData kUpright = {2, 2, -5, 2, 2, 5, 12, 2, 0};
constexpr tarn::TriangleData kApart = {0, 0, 100, 10, 0, 100, 0, 10, 100};

class Program : public testing::Test {
protected:
    ProgramRun Check(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "check");
        return RunTarn(arguments);
    }

    const TemporaryFolder folder_;
    const std::string level_ = folder_.Write("level.stl", TextStl({kLevel}));
    const std::string upright_ = folder_.Write("upright.stl", BinaryStl({kUpright}));
    const std::string apart_ = folder_.Write("apart.stl", TextStl({kApart}));
};

TEST_F(Program, ReportsTheInterferingCoupleWithItsCentre) {
    const ProgramRun run = Check({apart_, level_, upright_});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(std::ranges::count(run.output, '\n'), 3) << run.output;
    EXPECT_EQ(WordsOfLine(run.output, 2),
              (std::vector<std::string>{level_, upright_, "5.000", "2.000", "0.000"}));
    EXPECT_TRUE(
        Contains(run.output, "\n3 bodies, 3 triangles kept, 0 dropped, 3 couples offered, 1 interfering; "));
    const ProgramRun single = Check({"--threads", "1", apart_, level_, upright_});
    EXPECT_EQ(WordsOfLine(single.output, 2), WordsOfLine(run.output, 2));
}

TEST_F(Program, ACleanAnswerShowsThatItLooked) {
    const ProgramRun run = Check({apart_, level_});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(
        run.output.starts_with("2 bodies, 2 triangles kept, 0 dropped, 1 couples offered, 0 interfering; "));
    EXPECT_EQ(std::ranges::count(run.output, '\n'), 1) << run.output;
}

TEST_F(Program, UnitsAreConvertedOnLoadingAndResultsAreMillimetres) {
    const std::vector<std::pair<std::string, std::string>> units = {
        {"mm", "5.000"}, {"cm", "50.000"}, {"m", "5000.000"}, {"in", "127.000"}};
    for (const auto& [unit, x] : units) {
        const ProgramRun run = Check({"--unit", unit, level_, upright_});
        EXPECT_EQ(run.status, 1) << unit;
        EXPECT_EQ(WordsOfLine(run.output, 2)[2], x) << unit;
    }
}

TEST_F(Program, PoliciesDecideWhatIsCollected) {
    const std::string crossing = folder_.Write("crossing.stl", TextStl({{4, -5, -5, 4, 20, -5, 4, 0, 20}}));
    const std::vector<std::tuple<std::string, int, bool>> policies = {
        {"first", 1, false}, {"first-triangles", 1, true}, {"all", 3, false}, {"all-triangles", 3, true}};
    for (const auto& [policy, couple_count, has_centre] : policies) {
        const ProgramRun run = Check({"--policy", policy, level_, upright_, crossing});
        EXPECT_EQ(run.status, 1) << policy;
        EXPECT_EQ(std::ranges::count(run.output, '\n'), couple_count + 2) << run.output;
        EXPECT_EQ(WordsOfLine(run.output, 2)[4] != "-", has_centre) << run.output;
        EXPECT_EQ(Contains(run.output, "(stopped at the first)"), couple_count == 1) << run.output;
    }
}

TEST_F(Program, TheSameFileTwiceIsTwoBodiesWithNamesOfTheirOwn) {
    const ProgramRun run = Check({"--policy", "all", upright_, level_, upright_});
    EXPECT_TRUE(Contains(run.output, "\n3 bodies, ")) << run.output;
    EXPECT_TRUE(Contains(run.output, upright_ + " (2)")) << run.output;
}

TEST_F(Program, QuietLeavesOnlyTheExitStatus) {
    const std::string tiny = folder_.Write("tiny.stl", TextStl({{0, 0, 0, 0.01, 0, 0, 0, 0.01, 0}}));
    for (const auto& [file, status] : {std::pair(upright_, 1), std::pair(apart_, 0)}) {
        const ProgramRun run = Check({"--quiet", level_, tiny, file});
        EXPECT_EQ(run.status, status);
        EXPECT_EQ(run.output + run.errors, "");
    }
}

TEST_F(Program, DoubtfulPartsAreWarnedAboutInOneLineEach) {
    const std::vector<std::pair<tarn::TriangleData, std::string>> parts = {
        {{0, 0, 0, 0.1, 0, 0, 0, 0.1, 0}, "median edge 0.1 mm is below 0.2 mm"},
        {{8001, 0, 0, 8001, 1000, 0, 8001, 0, 600}, "edges of up to 1.17e+03 mm that reach to 8e+03 mm"},
        {{0, 0, 0, 1e308, 1e308, 0, -1e308, 0, 0}, "edges of up to inf mm"},
        {{0, 0, 0, 0, 0, 0, 0, 10, 0}, "none of its 1 triangles is valid"}};
    for (const auto& [triangle, warning] : parts) {
        const std::string part = folder_.Write("part.stl", TextStl({triangle}));
        const ProgramRun run = Check({apart_, part});
        EXPECT_EQ(run.status, 0);
        EXPECT_TRUE(run.errors.starts_with("tarn: warning: " + part + ": ")) << run.errors;
        EXPECT_TRUE(Contains(run.errors, warning)) << run.errors;
        EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1) << run.errors;
        EXPECT_TRUE(Contains(Check({part, part, part}).errors, "(2 more parts are like that)"));
    }
    const std::string large = folder_.Write("large.stl", TextStl({{9999, 0, 0, 9999, 1000, 0, 9999, 0, 1}}));
    EXPECT_EQ(Check({large}).errors, "");
    const std::string longer = folder_.Write("longer.stl", BinaryStl({kUpright}) + "more");
    EXPECT_TRUE(Contains(Check({longer}).errors, longer + ": 4 bytes behind the 1 facets"));
}

TEST_F(Program, TheDumpHoldsTheVeryCoordinates) {
    const std::string dump = (folder_ / "dump.stl").string();
    const std::string odd = folder_.Write("odd.stl", TextStl({{0.1, 1 / 3.0, 50, 10, 0.7, 50, 0, 10, 1e-9}}));
    EXPECT_EQ(Check({"--unit", "in", "--dump-stl", dump, odd, level_}).status, 0);
    Triangles expected = ReadStl(ReadWholeFile(odd), 25.4).triangles;
    expected.push_back(ReadStl(ReadWholeFile(level_), 25.4).triangles[0]);
    EXPECT_TRUE(AreSame(ReadStl(ReadWholeFile(dump), 1).triangles, expected));

    EXPECT_EQ(Check({"--dump", "boxes", "--dump-stl", dump, odd}).status, 0);
    EXPECT_EQ(ReadStl(ReadWholeFile(dump), 1).triangles.size(), 12U);
}

TEST_F(Program, WhatCannotBeReadIsOneLineThatNamesIt) {
    const std::string garbage = folder_.Write("garbage.stl", std::string(500, 'x'));
    const std::string bad_number =
        folder_.Write("bad.stl", Replaced(TextStl({kLevel}), "vertex 10", "vertex 1,5"));
    ExpectFailure(Check({level_, (folder_ / "missing.stl").string()}),
                  "missing.stl: cannot be opened (No such file");
    ExpectFailure(Check({level_ + "/below"}), "level.stl/below: cannot be opened (Not a directory)");
    ExpectFailure(Check({(folder_ / "").string()}), ": is a folder");
    ExpectFailure(Check({folder_.Write("empty.stl", "")}), "empty.stl: is empty, holds no triangles");
    ExpectFailure(Check({garbage}), "garbage.stl: header promises");
    ExpectFailure(Check({bad_number}), "bad.stl: line 5: '1,5' is not a number");
    ExpectFailure(
        Check({"--unit", "in", folder_.Write("huge.stl", Replaced(TextStl({kLevel}), "10", "1e308"))}),
        "huge.stl: line 5: a coordinate is not finite in millimetres");
    ExpectFailure(Check({(folder_ / "two\nlines").string()}), "two\\x0alines: cannot be opened");
}

TEST_F(Program, BadArgumentsAreOneLine) {
    for (const char* const arguments :
         {"", "check", "chekc FILE", "--what", "check FILE --what", "check FILE --unit furlong",
          "check FILE --policy", "check FILE --threads 0", "check FILE --threads -1",
          "check FILE --threads x", "check FILE --dump boxes", "check FILE --dump-stl",
          "check FILE --dump-stl=", "check FILE --quiet=maybe"}) {
        ExpectFailure(RunTarn(WordsOfLine(Replaced(arguments, "FILE", level_), 1)), "");
    }
}

TEST_F(Program, WhatCannotBeWrittenIsOneLineAndOlderFilesStay) {
    ExpectFailure(RunTarn({"check", level_, upright_}, "", "/dev/full"),
                  "standard output: cannot be written (No space");
    ExpectFailure(RunTarn({"--version"}, "", "/dev/full"), "standard output: cannot be written (No space");
    ExpectFailure(Check({"--dump-stl", "/dev/full", level_}), "/dev/full: cannot be written (No space");
    ExpectFailure(Check({"--dump-stl", level_ + "/below", level_}),
                  "below: cannot be written (Not a directory)");

    const std::string older = folder_.Write("older.stl", "older");
    ExpectFailure(Check({"--dump-stl", older, (folder_ / "missing.stl").string()}), "missing.stl");
    // A file size limit of 512 bytes stands in for a full disk; its signal is ignored, so that the write
    // itself fails.
    const std::string large = folder_.Write("large.stl", TextStl(Triangles(1000, kLevel)));
    ExpectFailure(RunTarn({"check", "--dump-stl", older, large}, "trap '' XFSZ; ulimit -f 1; "),
                  "older.stl: cannot be written (File too large)");
    EXPECT_EQ(ReadWholeFile(older), "older");
    EXPECT_EQ(folder_.FileCount(), 5U);
}

TEST_F(Program, VersionAndHelpGoToStandardOutput) {
    EXPECT_EQ(RunTarn({"--version"}).output, tarn::GetVersionText());
    const ProgramRun help = RunTarn({"check", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.errors, "");
    EXPECT_TRUE(Contains(help.output, "--policy") && Contains(help.output, "Tolerances are absolute"));
}

}  // namespace
}  // namespace tarn::program
