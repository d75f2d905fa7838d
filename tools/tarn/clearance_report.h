#pragma once

#include "assembly_summary.h"
#include "point.h"
#include "reported_part.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tarn::program {

/// How a couple fails to keep its clearance, the worst first; the last is left unsaid.
enum class Nearness { Intersecting, Touching, TooNear, NotJudged };

/// One couple that does not keep its clearance, or of which that is not known.
struct NearCouple {
    ReportedPart first;
    ReportedPart second;
    Nearness nearness = Nearness::NotJudged;
    double clearance = 0;  ///< that the couple should keep
    // Where the couple is too near; otherwise none.
    std::optional<double> distance;
    std::optional<Point> first_point;   ///< on the first part, at that distance from the second's
    std::optional<Point> second_point;  ///< on the second part
};

/// All that a check of clearances tells. Lengths are millimetres.
struct ClearanceReport {
    AssemblySummary summary;
    std::optional<double> clearance;  ///< of all couples; none: each has its own, which reports then show
    std::vector<NearCouple> couples;
};

std::size_t CountOf(const ClearanceReport& report, Nearness nearness);

/// The couples as a table with a heading, one line each: both short names, how near they are, the distance
/// and the two points, or "-" for what there is not. Empty without couples.
std::string FormatTable(const ClearanceReport& report);

/// The summary as one line.
std::string FormatSummary(const ClearanceReport& report);

/// The couples as comma-separated values with a heading, numbers with all their digits.
std::string FormatCsv(const ClearanceReport& report);

/// The couples and the summary as one JSON object, numbers with all their digits.
std::string FormatJson(const ClearanceReport& report);

}  // namespace tarn::program
