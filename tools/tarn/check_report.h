#pragma once

#include "assembly_summary.h"
#include "point.h"
#include "reported_part.h"

#include <optional>
#include <string>
#include <vector>

namespace tarn::program {

/// One interfering couple.
struct InterferingCouple {
    ReportedPart first;
    ReportedPart second;
    std::optional<Point> centre;  ///< of the crossing; none for policies without triangles
};

/// All that `tarn check` tells.
struct CheckReport {
    AssemblySummary summary;
    bool stops_at_first = false;  ///< one interfering couple was asked for, so their number says no more
    std::vector<InterferingCouple> couples;
};

/// The couples as a table with a heading, one line each: both short names, then the centre of the crossing
/// in millimetres, or "-" without one. Empty without couples.
std::string FormatTable(const CheckReport& report);

/// The summary as one line.
std::string FormatSummary(const CheckReport& report);

/// The couples as comma-separated values with a heading, numbers with all their digits.
std::string FormatCsv(const CheckReport& report);

/// The couples and the summary as one JSON object, numbers with all their digits.
std::string FormatJson(const CheckReport& report);

}  // namespace tarn::program
