#pragma once

#include "point.h"
#include "reported_part.h"

#include <optional>
#include <string>

namespace tarn::program {

/// The heading of the columns that `CsvOfParts` fills.
inline constexpr const char* kCsvPartColumns = "first,second,first_owner,second_owner";

/// Both names and both owners, as fields of comma-separated values.
std::string CsvOfParts(const ReportedPart& first, const ReportedPart& second);

/// Three fields with all digits, or three empty ones for no point.
std::string CsvOf(const std::optional<Point>& point);

/// One field with all digits, or an empty one for no number.
std::string CsvOf(const std::optional<double>& number);

}  // namespace tarn::program
