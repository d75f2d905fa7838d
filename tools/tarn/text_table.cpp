#include "text_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace tarn::program {
namespace {

/// Columns on the screen: UTF-8 continuation bytes take none.
std::size_t DisplayWidth(std::string_view text) {
    const auto starts_character = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
    };
    return static_cast<std::size_t>(std::ranges::count_if(text, starts_character));
}

}  // namespace

TextTable::TextTable(Row heading, std::size_t word_column_count) : word_column_count_(word_column_count) {
    rows_.push_back(std::move(heading));
}

std::string TextTable::Format() const {
    const std::size_t column_count = rows_.front().size();
    std::vector<std::size_t> widths(column_count, 0);
    for (const Row& row : rows_) {
        for (std::size_t column = 0; column < column_count; ++column) {
            widths[column] = std::max(widths[column], DisplayWidth(row[column]));
        }
    }
    std::string table;
    for (const Row& row : rows_) {
        for (std::size_t column = 0; column < column_count; ++column) {
            const std::string padding(widths[column] - DisplayWidth(row[column]), ' ');
            if (column > 0) table += "  ";
            table += column < word_column_count_ ? row[column] + padding : padding + row[column];
        }
        table += '\n';
    }
    return table;
}

/// Micrometres suffice: the triangle tests' own tolerances are not finer. Huge numbers are written short.
std::string FormatMillimetres(double value) {
    constexpr double kLongest = 1e9;
    constexpr double kHalfMicrometre = 0.0005;
    if (std::abs(value) < kHalfMicrometre) return "0.000";  // never "-0.000"
    return std::abs(value) < kLongest ? fmt::format("{:.3f}", value) : fmt::format("{:.9g}", value);
}

void AddPoint(TextTable::Row& row, const std::optional<Point>& point) {
    if (!point) {
        row.insert(row.end(), 3, "-");
        return;
    }
    for (const double value : {point->x, point->y, point->z}) row.push_back(FormatMillimetres(value));
}

}  // namespace tarn::program
