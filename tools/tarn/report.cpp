#include "report.h"

#include "readers/printable_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
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

Row MakeRow(const ReportedCouple& couple) {
    Row row = {Printable(couple.first.short_name), Printable(couple.second.short_name), "-", "-", "-"};
    if (!couple.centre) return row;
    row[2] = FormatMillimetres(couple.centre->x);
    row[3] = FormatMillimetres(couple.centre->y);
    row[4] = FormatMillimetres(couple.centre->z);
    return row;
}

}  // namespace

std::string FormatTable(const Report& report) {
    if (report.couples.empty()) return {};
    std::vector<Row> rows = {{"first", "second", "centre x [mm]", "y [mm]", "z [mm]"}};
    for (const ReportedCouple& couple : report.couples) rows.push_back(MakeRow(couple));

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
