#include "report.h"

#include "crossing_centre.h"
#include "printable_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string_view>
#include <vector>

namespace tarn::program {
namespace {

constexpr std::size_t kColumnCount = 5;
constexpr std::size_t kNameColumnCount = 2;  // names stand to the left, numbers to the right

using Row = std::array<std::string, kColumnCount>;

/// Micrometres suffice: the triangle tests' own tolerances are not finer. Huge numbers are written short.
std::string FormatMillimetres(double value) {
    constexpr double kLongest = 1e9;
    constexpr double kHalfMicrometre = 0.0005;
    if (std::abs(value) < kHalfMicrometre) return "0.000";  // never "-0.000"
    return std::abs(value) < kLongest ? fmt::format("{:.3f}", value) : fmt::format("{:.9g}", value);
}

/// Columns on the screen: UTF-8 continuation bytes take none.
std::size_t DisplayWidth(std::string_view text) {
    const auto starts_character = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
    };
    return static_cast<std::size_t>(std::ranges::count_if(text, starts_character));
}

Row MakeRow(const tarn::CollisionPairResult& pair) {
    Row row = {Printable(pair.First->GetName()), Printable(pair.Second->GetName()), "-", "-", "-"};
    if (pair.Triangles.empty()) return row;
    const Point centre = CrossingCentre(pair.Triangles.front());
    row[2] = FormatMillimetres(centre.x);
    row[3] = FormatMillimetres(centre.y);
    row[4] = FormatMillimetres(centre.z);
    return row;
}

}  // namespace

std::string FormatTable(const tarn::CollisionResult& result) {
    if (result.Pairs.empty()) return {};
    std::vector<Row> rows = {{"first", "second", "centre x [mm]", "y [mm]", "z [mm]"}};
    std::ranges::transform(result.Pairs, std::back_inserter(rows), MakeRow);

    std::array<std::size_t, kColumnCount> widths{};
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < kColumnCount; ++column) {
            widths[column] = std::max(widths[column], DisplayWidth(row[column]));
        }
    }
    std::string table;
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < kColumnCount; ++column) {
            const std::string padding(widths[column] - DisplayWidth(row[column]), ' ');
            if (column > 0) table += "  ";
            table += column < kNameColumnCount ? row[column] + padding : padding + row[column];
        }
        table += '\n';
    }
    return table;
}

std::string FormatSummary(const CheckSummary& summary) {
    return fmt::format(
        "{} bodies, {} triangles kept, {} dropped, {} couples offered, {} interfering{}; loading {:.3f} s, "
        "building {:.3f} s, checking {:.3f} s\n",
        summary.body_count, summary.kept_triangle_count, summary.dropped_triangle_count, summary.couple_count,
        summary.interfering_count,
        summary.stops_at_first && summary.interfering_count > 0 ? " (stopped at the first)" : "",
        summary.loading_seconds, summary.building_seconds, summary.checking_seconds);
}

}  // namespace tarn::program
