#pragma once

#include "crossing_centre.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarn::program {

/// What a check looked at and found, for the line that proves it.
struct CheckSummary {
    std::size_t body_count = 0;
    std::uint64_t kept_triangle_count = 0;
    std::uint64_t dropped_triangle_count = 0;
    std::uint64_t couple_count = 0;
    std::size_t interfering_count = 0;
    bool stops_at_first = false;  ///< one interfering couple was asked for, so the count says no more
    double loading_seconds = 0;
    double building_seconds = 0;
    double checking_seconds = 0;
};

/// One side of an interfering couple.
struct ReportedPart {
    std::string name;
    std::string short_name;  ///< for the eye: see `ShortNames`
    std::string owner;
};

/// One interfering couple.
struct ReportedCouple {
    ReportedPart first;
    ReportedPart second;
    std::optional<Point> centre;  ///< of the crossing; none for policies without triangles
};

/// All that a report tells.
struct Report {
    std::vector<ReportedCouple> couples;
    CheckSummary summary;
};

/// The couples as a table with a heading, one line each: both short names, then the centre of the crossing
/// in millimetres, or "-" without one. Empty without couples.
std::string FormatTable(const Report& report);

/// The summary as one line.
std::string FormatSummary(const CheckSummary& summary);

/// The couples as comma-separated values with a heading, numbers with all their digits.
std::string FormatCsv(const Report& report);

/// The couples and the summary as one JSON object, numbers with all their digits.
std::string FormatJson(const Report& report);

}  // namespace tarn::program
