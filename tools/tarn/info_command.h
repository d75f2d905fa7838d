#pragma once

#include "readers/length_unit.h"
#include "run_options.h"

#include <string>

namespace tarn::program {

/// What `tarn info` was asked for.
struct InfoOptions {
    std::string file;
    LengthUnit unit = LengthUnit::Millimetre;  ///< of a mesh file that states none
    RunOptions run;
};

/// Tells what is in a mesh file or a scene. Throws `ProgramError` for files that cannot be read or written.
void RunInfo(const InfoOptions& options);

}  // namespace tarn::program
