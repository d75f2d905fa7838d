#pragma once

#include "report_format.h"

#include "tarn/dump_type.h"

#include <cstddef>
#include <string>

namespace tarn::program {

/// How a command runs, and what it writes where. Not every command offers all of it.
struct RunOptions {
    ReportFormat format = ReportFormat::Table;
    std::string output_path;  ///< empty: the report goes to standard output
    std::string dump_path;    ///< empty: no dump
    tarn::DumpType dump_type = tarn::DumpType::Triangles;
    std::size_t thread_limit = 0;  ///< 0: as many threads as the machine has
    bool is_quiet = false;         ///< nothing on standard output, no warnings, no progress
};

}  // namespace tarn::program
