#pragma once

#include "program_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace tarn::program {

inline bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// The words of a line, so that the width of columns does not matter.
inline std::vector<std::string> WordsOfLine(const std::string& text, int number) {
    std::istringstream lines(text);
    std::string line;
    for (int index = 0; index < number; ++index) std::getline(lines, line);
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
}

/// Whether the run failed as every failure should: status 2, silence, one line that says what and why.
inline void ExpectFailure(const ProgramRun& run, const std::string& cause) {
    EXPECT_EQ(run.status, 2) << cause;
    EXPECT_EQ(run.output, "") << cause;
    EXPECT_TRUE(run.errors.starts_with("tarn: ") && Contains(run.errors, cause))
        << cause << ": " << run.errors;
    EXPECT_TRUE(run.errors.ends_with('\n') && std::ranges::count(run.errors, '\n') == 1) << run.errors;
}

}  // namespace tarn::program
