#pragma once

#include "couple_choice.h"
#include "readers/length_unit.h"
#include "report_format.h"

#include "tarn/dump_type.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tarn::program {

/// What all commands that look at an assembly can be asked for.
struct AssemblyOptions {
    std::vector<std::string> files;            ///< the same file may come more than once
    LengthUnit unit = LengthUnit::Millimetre;  ///< of files that state none
    CoupleChoice couples;
    ReportFormat format = ReportFormat::Table;
    std::string output_path;  ///< empty: the report goes to standard output
    std::string dump_path;    ///< empty: no dump
    tarn::DumpType dump_type = tarn::DumpType::Triangles;
    std::size_t thread_limit = 0;  ///< 0: as many threads as the machine has
    bool is_quiet = false;         ///< nothing on standard output, no warnings, no progress
};

}  // namespace tarn::program
