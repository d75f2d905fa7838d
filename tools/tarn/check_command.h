#pragma once

#include "assembly_options.h"
#include "run_options.h"

#include "tarn/check_policy.h"

namespace tarn::program {

/// What `tarn check` was asked for.
struct CheckOptions {
    AssemblyOptions assembly;
    RunOptions run;
    tarn::CheckPolicy policy = tarn::CheckPolicy::AllInterferencesWithTriangles;
};

/// Reads the files, checks the chosen couples, reports what was found. Returns whether anything interferes.
/// Throws `ProgramError` for files that cannot be read or written, and what the engine throws.
bool RunCheck(const CheckOptions& options);

}  // namespace tarn::program
