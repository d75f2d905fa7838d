#include "program_run.h"
#include "readers/stl_reader.h"

#include "tarn/version.h"

#include <tuple>

namespace tarn::program {
namespace {

class Program : public ProgramTest {
protected:
    static ProgramRun Check(Words arguments) {
        arguments.insert(arguments.begin(), "check");
        return RunTarn(arguments);
    }
};

TEST_F(Program, ReportsTheInterferingCoupleWithItsCentreInMillimetres) {
    const ProgramRun run = Check({far_, level_, upright_});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(LineCount(run.output), 3) << run.output;
    EXPECT_EQ(WordsOfLine(run.output, 2), (Words{level_, upright_, "5.000", "2.000", "0.000"}));
    EXPECT_TRUE(
        Contains(run.output, "\n3 bodies, 3 triangles kept, 0 dropped, 3 couples offered, 1 interfering; "));
    for (const auto& [unit, x] :
         {std::pair("mm", "5.000"), {"cm", "50.000"}, {"m", "5000.000"}, {"in", "127.000"}}) {
        const ProgramRun of_unit = Check({"--unit", unit, "--threads", "1", level_, upright_});
        EXPECT_EQ(WordsOfLine(of_unit.output, 2).at(2), x) << unit;
    }
    const ProgramRun clean = Check({far_, level_});
    EXPECT_EQ(clean.status, 0);
    EXPECT_EQ(LineCount(clean.output), 1) << clean.output;
    EXPECT_TRUE(clean.output.starts_with(
        "2 bodies, 2 triangles kept, 0 dropped, 1 couples offered, 0 interfering; "));
    const ProgramRun twice = Check({"--policy", "all", upright_, level_, upright_});
    EXPECT_TRUE(Contains(twice.output, "\n3 bodies, ") && Contains(twice.output, upright_ + " (2)"));
}

TEST_F(Program, PoliciesDecideWhatIsCollected) {
    const std::string crossing = Write("crossing.stl", {4, -5, -5, 4, 20, -5, 4, 0, 20});
    for (const auto& [policy, couple_count, has_centre] : {std::tuple("first", 1, false),
                                                           {"first-triangles", 1, true},
                                                           {"all", 3, false},
                                                           {"all-triangles", 3, true}}) {
        const ProgramRun run = Check({"--policy", policy, level_, upright_, crossing});
        EXPECT_EQ(run.status, 1) << policy;
        EXPECT_EQ(LineCount(run.output), couple_count + 2) << run.output;
        EXPECT_EQ(WordsOfLine(run.output, 2).at(4) != "-", has_centre) << run.output;
        EXPECT_EQ(Contains(run.output, "(stopped at the first)"), couple_count == 1) << run.output;
    }
}

TEST_F(Program, DoubtfulPartsAreWarnedAboutInOneLineEach) {
    const std::vector<std::pair<tarn::TriangleData, std::string>> parts = {
        {{0, 0, 0, 0.1, 0, 0, 0, 0.1, 0}, "median edge 0.1 mm is below 0.2 mm"},
        {{8001, 0, 0, 8001, 1000, 0, 8001, 0, 600}, "edges of up to 1.17e+03 mm that reach to 8e+03 mm"},
        {{0, 0, 0, 1e308, 1e308, 0, -1e308, 0, 0}, "edges of up to inf mm"},
        {{0, 0, 0, 0, 0, 0, 0, 10, 0}, "none of its 1 triangles is valid"}};
    for (const auto& [triangle, warning] : parts) {
        const std::string part = Write("part.stl", triangle);
        const ProgramRun run = Check({far_, part});
        EXPECT_EQ(run.status, 0);
        EXPECT_TRUE(run.errors.starts_with("tarn: warning: " + part + ": ")) << run.errors;
        EXPECT_TRUE(Contains(run.errors, warning) && LineCount(run.errors) == 1) << run.errors;
        EXPECT_TRUE(Contains(Check({part, part, part}).errors, "(2 more parts are like that)"));
        const ProgramRun quiet = Check({"--quiet", level_, upright_, part});
        EXPECT_EQ(quiet.output + quiet.errors, "");
        EXPECT_EQ(quiet.status, 1);
    }
    EXPECT_EQ(Check({Write("large.stl", {9999, 0, 0, 9999, 1000, 0, 9999, 0, 1})}).errors, "");
    const std::string longer = folder_.Write("longer.stl", ReadWholeFile(upright_) + "more");
    EXPECT_TRUE(Contains(Check({longer}).errors, longer + ": 4 bytes behind the 1 facets"));
}

TEST_F(Program, TheDumpHoldsTheVeryCoordinates) {
    const std::string dump = folder_.Path("dump.stl");
    const std::string odd = Write("odd.stl", {0.1, 1 / 3.0, 50, 10, 0.7, 50, 0, 10, 1e-9});
    const auto triangles_in = [](const std::string& path, double millimetres_per_unit) {
        return ReadStl(ReadWholeFile(path), millimetres_per_unit).triangles;
    };
    const Triangles expected = {triangles_in(odd, 25.4)[0], triangles_in(level_, 25.4)[0]};
    for (const Words& command : {Words{"check"}, Words{"clearance", "--clearance", "0"}}) {
        Words arguments = command;
        arguments.insert(arguments.end(), {"--unit", "in", "--dump-stl", dump, odd, level_});
        EXPECT_EQ(RunTarn(arguments).status, 0);
        EXPECT_TRUE(AreSame(triangles_in(dump, 1), expected)) << command[0];
        std::filesystem::remove(dump);
    }
    EXPECT_EQ(Check({"--dump", "boxes", "--dump-stl", dump, odd}).status, 0);
    EXPECT_EQ(triangles_in(dump, 1).size(), 12U);
}

TEST_F(Program, WhatCannotBeDoneIsOneLineThatSaysWhy) {
    const std::string text = ReadWholeFile(level_);
    const std::string missing = folder_.Path("missing.stl");
    const std::string stopped = "standard output: cannot be written (No space";
    const std::vector<std::pair<Words, std::string>> cases = {
        {{"check", level_, missing}, "missing.stl: cannot be opened (No such file"},
        {{"clearance", "--clearance", "1", level_, missing}, "missing.stl: cannot be opened"},
        {{"replay", missing}, "missing.stl: cannot be opened (No"},
        {{"info", missing}, "missing.stl: cannot be opened (No"},
        {{"check", level_ + "/below"}, "level.stl/below: cannot be opened (Not a directory)"},
        {{"check", folder_.Path("")}, ": is a folder"},
        {{"replay", folder_.Path("")}, ": is a folder"},
        {{"replay", "/dev/null"}, "/dev/null: is no regular file"},
        {{"replay", level_}, "level.stl: is no scene"},
        {{"check", folder_.Write("empty.stl", "")}, "empty.stl: is empty, holds no triangles"},
        {{"check", folder_.Write("garbage.stl", std::string(500, 'x'))}, "garbage.stl: header promises"},
        {{"check", folder_.Write("bad.stl", Replaced(text, "vertex 10", "vertex 1,5"))},
         "bad.stl: line 5: '1,5' is not a number"},
        {{"check", "--unit", "in", folder_.Write("huge.stl", Replaced(text, "10", "1e308"))},
         "huge.stl: line 5: a coordinate is not finite in millimetres"},
        {{"check", folder_.Path("two\nlines")}, "two\\x0alines: cannot be opened"},
        {{"clearance", level_, half_}, "--clearance is required"},
        {{"clearance", "--clearance", "1"}, "FILE is required"},
        {{"clearance", "--clearance", "1", level_, "--policy", "all"}, "--policy"},
        {{"clearance", "--clearance", "1", level_, "--against", "nut"},
         "--against: no part or owner is named 'nut'"},
        {{"record", level_}, "--output is required"},
        {{"record", level_, "-o", level_}, "is another of the files given"},
        {{"clearance", "--clearance", "1", level_, "--output", level_}, "is another of the files given"},
        {{"record", level_, "-o", "/dev/full"}, "/dev/full: cannot be written (No space left on device)"},
        {{"record", level_, "-o", level_ + "/below"}, "below: cannot be written (Not a dir"},
        {{"check", "--dump-stl", "/dev/full", level_}, "/dev/full: cannot be written (No space"},
        {{"check", "--dump-stl", level_ + "/below", level_}, "below: cannot be written (Not a directory)"},
    };
    for (const auto& [arguments, cause] : cases) ExpectFailure(RunTarn(arguments), cause);
    for (const Words& arguments : {Words{"check", level_, upright_}, Words{"--version"},
                                   Words{"clearance", "--clearance", "1", level_, half_}})
        ExpectFailure(RunTarn(arguments, "", "/dev/full"), stopped);
    EXPECT_EQ(ReadWholeFile(level_), text);
}

TEST_F(Program, BadArgumentsAreOneLine) {
    // clang-format off
    const char* const calls[] = {
        "", "check", "chekc FILE", "--what", "check FILE --what", "check FILE --unit furlong",
        "check FILE --policy", "check FILE --threads 0", "check FILE --threads -1", "check FILE --threads x",
        "check FILE --dump boxes", "check FILE --dump-stl", "check FILE --dump-stl=", "check FILE --quiet=maybe",
        "check FILE --format xml", "check FILE --output=", "check FILE --ignore one", "check FILE --against=",
        "check FILE --between-owners --within-owners", "check FILE --against level.stl --within-owners",
        "check FILE --between-owners --against level.stl", "clearance FILE --clearance="};
    // clang-format on
    for (const char* const arguments : calls) {
        SCOPED_TRACE(arguments);
        ExpectFailure(RunTarn(WordsOfLine(Replaced(arguments, "FILE", level_), 1)), "");
    }
    for (const char* const clearance :
         {"-1", "-1e-9", "nan", "-nan", "inf", "1e309", "x", "1mm", "1,5", "0x1", " 1"}) {
        ExpectFailure(RunTarn({"clearance", level_, half_, "--clearance", clearance}),
                      std::string("--clearance: '") + clearance + "' is not a length in millimetres");
    }
}

TEST_F(Program, OlderFilesStayWhereNewOnesFail) {
    const std::string older = folder_.Write("older", "older");
    const std::string large = folder_.Write("large.stl", TextStl(Triangles(1000, SampleTriangles()[0])));
    ExpectFailure(Check({"--dump-stl", older, folder_.Path("missing.stl")}), "missing.stl");
    // A file size limit of 512 bytes stands in for a full disk; its signal is ignored, so that the write
    // itself fails.
    for (const char* const option : {"--dump-stl", "--output"}) {
        const ProgramRun run =
            RunTarn({"check", large, level_, upright_, upright_, upright_, "--format", "json", option, older},
                    "trap '' XFSZ; ulimit -f 1; ");
        EXPECT_EQ(run.status, 2);
        EXPECT_TRUE(Contains(run.errors, "older: cannot be written (File too large)")) << run.errors;
    }
    EXPECT_EQ(ReadWholeFile(older), "older");
    EXPECT_EQ(folder_.FileCount(), 6U) << "no temporary file is left";
}

TEST_F(Program, VersionAndHelpGoToStandardOutput) {
    EXPECT_EQ(RunTarn({"--version"}).output, tarn::GetVersionText());
    for (const auto& [command, text] :
         {std::pair("check", "Tolerances are absolute"), {"clearance", "below 0.001"}}) {
        const ProgramRun help = RunTarn({command, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.errors, "");
        EXPECT_TRUE(Contains(help.output, "--threads") && Contains(help.output, text)) << help.output;
    }
}

}  // namespace
}  // namespace tarn::program
