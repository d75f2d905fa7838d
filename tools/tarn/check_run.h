#pragma once

#include "assembly_options.h"
#include "assembly_summary.h"
#include "console.h"
#include "couple_check.h"
#include "part_directory.h"
#include "run_options.h"

#include <memory>
#include <string_view>

namespace tarn::program {

/// Dumps, checks and reports, as the options say. `summary` tells what was loaded, `command` is the command's
/// name, for warnings. Returns whether anything was found. Throws `ProgramError` for files that cannot be
/// written, and what the engine throws.
bool CheckAndReport(CoupleCheck& check,
                    const PartDirectory& parts,
                    AssemblySummary summary,
                    const RunOptions& options,
                    std::string_view command,
                    Console& console);

/// The whole run of a command that checks the couples of an assembly: `check` has an empty configuration.
/// Returns and throws as above; also throws `ProgramError` for files that cannot be read.
bool CheckAssembly(std::unique_ptr<CoupleCheck> check,
                   const AssemblyOptions& assembly,
                   const RunOptions& options,
                   std::string_view command);

/// Writes a report, which has the summary in it, where the options say. A file takes the report's place on
/// standard output, where only the summary is left to say. Throws `ProgramError`.
void WriteReport(const std::string& report, const std::string& summary, const RunOptions& options);

}  // namespace tarn::program
