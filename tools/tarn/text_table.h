#pragma once

#include "point.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tarn::program {

/// A table for the eye: columns as wide as their widest cell, the first ones, which hold words, to the left,
/// the others, which hold numbers, to the right.
class TextTable final {
public:
    using Row = std::vector<std::string>;

    /// The first row names the columns.
    TextTable(Row heading, std::size_t word_column_count);

    /// As many cells as the heading has.
    void Add(Row row) { rows_.push_back(std::move(row)); }

    /// One line for each row.
    std::string Format() const;

private:
    std::vector<Row> rows_;
    std::size_t word_column_count_;
};

/// A length or coordinate as a cell.
std::string FormatMillimetres(double value);

/// Adds three cells: the coordinates, or "-" thrice for no point.
void AddPoint(TextTable::Row& row, const std::optional<Point>& point);

}  // namespace tarn::program
