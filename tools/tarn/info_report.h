#pragma once

#include "assembly_summary.h"
#include "point.h"
#include "reported_part.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::program {

/// Where triangles reach, in world coordinates, in millimetres. Low and high are none without triangles.
struct Extents {
    std::optional<Point> low;
    std::optional<Point> high;

    void Include(const Point& point);
    void Include(const Extents& other);
};

struct BodyInfo {
    ReportedPart part;
    std::uint64_t kept_triangle_count = 0;
    std::optional<std::uint64_t> dropped_triangle_count;  ///< of scenes unknown
    std::uint64_t depth = 0;
    Extents extents;
};

/// All that `tarn info` tells.
struct InfoReport {
    std::string kind;  ///< "mesh file", "collision scene" or "proximity scene"
    std::vector<BodyInfo> bodies;
    std::size_t owner_count = 0;
    AssemblySummary summary;
    Extents extents;
    std::optional<std::pair<double, double>> clearances;  ///< smallest and largest; none without couples
};

/// One line for each body.
std::string FormatTable(const InfoReport& report);

/// All bodies together, as one line.
std::string FormatSummary(const InfoReport& report);

/// The bodies and the summary as one JSON object, numbers with all their digits.
std::string FormatJson(const InfoReport& report);

}  // namespace tarn::program
