#pragma once

#include "readers/file_content.h"
#include "temporary_folder.h"

#include <sys/wait.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace tarn::program {

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
inline ProgramRun RunTarn(const std::vector<std::string>& arguments,
                          const std::string& prelude = "",
                          const std::string& output = "") {
    const TemporaryFolder folder;
    const std::string output_path = output.empty() ? (folder / "output").string() : output;
    std::string command = prelude + Quoted(TARN_PROGRAM);
    for (const std::string& argument : arguments) command.append(" ").append(Quoted(argument));
    command += " >" + Quoted(output_path) + " 2>" + Quoted((folder / "errors").string());
    const int state = std::system(command.c_str());
    return {WIFEXITED(state) ? WEXITSTATUS(state) : -1,
            output.empty() ? ReadWholeFile(output_path) : std::string(), ReadWholeFile(folder / "errors")};
}

}  // namespace tarn::program
