#pragma once

namespace tarn::program {

/// How the program ends, for scripts.
enum class ExitStatus : int {
    Clear = 0,   ///< nothing was found (or help or version was asked for)
    Found = 1,   ///< something interferes, or is too near
    Failed = 2,  ///< the task could not be done; one line on standard error says why
};

/// The whole program: reads the arguments, runs the command, turns every exception into one line on standard
/// error.
ExitStatus RunProgram(int argument_count, const char* const* arguments);

}  // namespace tarn::program
