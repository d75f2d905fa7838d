#pragma once

#include "tarn/collision_result.h"

#include <cstddef>
#include <cstdint>
#include <string>

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

/// The interfering couples as a table with a heading, one line each: both names, then the centre of the
/// crossing in millimetres, or "-" without triangles. Empty without couples.
std::string FormatTable(const tarn::CollisionResult& result);

/// The summary as one line.
std::string FormatSummary(const CheckSummary& summary);

}  // namespace tarn::program
