#pragma once

#include "couple_choice.h"
#include "readers/length_unit.h"

#include "tarn/collision_detector.h"
#include "tarn/dump_type.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tarn::program {

enum class ReportFormat { Table, Json, Csv };

/// What `tarn check` was asked for.
struct CheckOptions {
    std::vector<std::string> files;            ///< the same file may come more than once
    LengthUnit unit = LengthUnit::Millimetre;  ///< of files that state none
    CoupleChoice couples;
    tarn::CheckPolicy policy = tarn::CheckPolicy::AllInterferencesWithTriangles;
    ReportFormat format = ReportFormat::Table;
    std::string output_path;  ///< empty: the report goes to standard output
    std::string dump_path;    ///< empty: no dump
    tarn::DumpType dump_type = tarn::DumpType::Triangles;
    std::size_t thread_limit = 0;  ///< 0: as many threads as the machine has
    bool is_quiet = false;         ///< nothing on standard output, no warnings, no progress
};

/// Reads the files, checks the chosen couples, reports what was found. Returns whether anything interferes.
/// Throws `ProgramError` for files that cannot be read or written, and what the engine throws.
bool RunCheck(const CheckOptions& options);

}  // namespace tarn::program
