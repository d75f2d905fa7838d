#pragma once

#include "assembly_options.h"
#include "run_options.h"

#include <string_view>

namespace tarn::program {

/// What `tarn clearance` was asked for.
struct ClearanceOptions {
    AssemblyOptions assembly;
    RunOptions run;
    double clearance = 0;  ///< in millimetres; finite and not negative
};

/// The clearance that a user says: a finite number of millimetres that is not negative. Throws
/// `ProgramError` for any other text.
double ParseClearance(std::string_view text);

/// Reads the files, measures the chosen couples, reports those that do not keep the clearance. Returns
/// whether any intersects, touches or is too near; couples that could not be judged are reported and warned
/// about, and do not count. Throws `ProgramError` for files that cannot be read or written, and what the
/// engine throws.
bool RunClearance(const ClearanceOptions& options);

}  // namespace tarn::program
