#pragma once

#include "run_options.h"

#include <string>

namespace tarn::program {

/// What `tarn replay` was asked for.
struct ReplayOptions {
    std::string file;
    RunOptions run;
};

/// Reads a scene, checks its couples as its type says, reports what was found. Returns whether that is
/// anything. Throws `ProgramError` for files that cannot be read or written, and what the engine throws.
bool RunReplay(const ReplayOptions& options);

}  // namespace tarn::program
