#pragma once

#include "readers/file_content.h"
#include "stl_samples.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace tarn::program {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

/// How a run of the built program ended. A program that a signal ended has the status -1.
struct ProgramRun {
    int status;
    std::string output;
    std::string errors;
};

inline std::string Quoted(const std::string& word) {
    return "'" + word + "'";
}

/// Runs the built program. `prelude` is shell text before it, `output` another target for standard output.
inline ProgramRun RunTarn(const Words& arguments,
                          const std::string& prelude = "",
                          const std::string& output = "") {
    const TemporaryFolder folder;
    const std::string output_path = output.empty() ? folder.Path("output") : output;
    std::string command = prelude + Quoted(TARN_PROGRAM);
    for (const std::string& argument : arguments) command.append(" ").append(Quoted(argument));
    command += " >" + Quoted(output_path) + " 2>" + Quoted(folder.Path("errors"));
    const int state = std::system(command.c_str());
    return {WIFEXITED(state) ? WEXITSTATUS(state) : -1,
            output.empty() ? ReadWholeFile(output_path) : std::string(), ReadWholeFile(folder / "errors")};
}

/// The report of a run that ends with this status.
inline Json RunJson(Words arguments, int status) {
    arguments.insert(arguments.end(), {"--format", "json"});
    const ProgramRun run = RunTarn(arguments);
    EXPECT_EQ(run.status, status) << arguments[0] << ": " << run.errors;
    return Json::parse(run.output);
}

inline bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

inline std::ptrdiff_t LineCount(const std::string& text) {
    return std::ranges::count(text, '\n');
}

/// The words of a line, so that the width of columns does not matter.
inline Words WordsOfLine(const std::string& text, int number) {
    std::istringstream lines(text);
    std::string line;
    for (int index = 0; index < number; ++index) std::getline(lines, line);
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
}

/// Whether an object has these fields, and maybe others.
inline void ExpectFields(const Json& object, const Json& expected) {
    for (const auto& [key, value] : expected.items())
        EXPECT_EQ(object.value(key, Json("none")), value) << key;
}

/// The couples of a report, each as "first | second".
inline Words CouplesIn(const Json& couples) {
    Words names;
    for (const Json& couple : couples)
        names.push_back(couple["first"]["name"].get<std::string>() + " | " +
                        couple["second"]["name"].get<std::string>());
    return names;
}

/// Whether the run failed as every failure should: status 2, silence, one line that says what and why.
inline void ExpectFailure(const ProgramRun& run, const std::string& cause) {
    EXPECT_EQ(run.status, 2) << cause;
    EXPECT_EQ(run.output, "") << cause;
    EXPECT_TRUE(run.errors.starts_with("tarn: ") && Contains(run.errors, cause))
        << cause << ": " << run.errors;
    EXPECT_TRUE(run.errors.ends_with('\n') && LineCount(run.errors) == 1) << run.errors;
}

/// Parts of one triangle each. The upright one cuts the level one, which lies in z = 0, from (2, 2, 0) to
/// (8, 2, 0). The half one has its first corner half a millimetre above the level one.
class ProgramTest : public testing::Test {
protected:
    std::string Write(const std::string& name, const tarn::TriangleData& triangle) const {
        return folder_.Write(name, TextStl({triangle}));
    }

    const TemporaryFolder folder_;
    const std::string level_ = Write("level.stl", {0, 0, 0, 10, 0, 0, 0, 10, 0});
    const std::string upright_ = folder_.Write("upright.stl", BinaryStl({{2, 2, -5, 2, 2, 5, 12, 2, 0}}));
    const std::string half_ = Write("half.stl", {3, 4, 0.5, 9, 1, 8, 1, 9, 8});
    const std::string far_ = Write("far.stl", {0, 0, 50, 10, 0, 50, 0, 10, 50});
};

}  // namespace tarn::program
