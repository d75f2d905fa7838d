#pragma once

#include "assembly_options.h"
#include "run_options.h"

#include <optional>

namespace tarn::program {

/// What `tarn record` was asked for.
struct RecordOptions {
    AssemblyOptions assembly;
    RunOptions run;
    std::optional<double> clearance;  ///< of all couples of a proximity scene; none: a collision scene
};

/// Reads the files and writes their parts, placements baked, and the chosen couples as a scene. Throws
/// `ProgramError` for files that cannot be read or written, and what the engine throws.
void RunRecord(const RecordOptions& options);

}  // namespace tarn::program
