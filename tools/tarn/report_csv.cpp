#include "report_csv.h"

#include <fmt/format.h>

namespace tarn::program {
namespace {

/// In quotes where the text would end the field; quotes inside are doubled.
std::string Field(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string field = "\"";
    for (const char character : text) {
        if (character == '"') field += '"';
        field += character;
    }
    return field + '"';
}

}  // namespace

std::string CsvOfParts(const ReportedPart& first, const ReportedPart& second) {
    return fmt::format("{},{},{},{}", Field(first.name), Field(second.name), Field(first.owner),
                       Field(second.owner));
}

std::string CsvOf(const std::optional<Point>& point) {
    return point ? fmt::format("{},{},{}", point->x, point->y, point->z) : ",,";
}

std::string CsvOf(const std::optional<double>& number) {
    // Without a format, numbers get the fewest digits that give back the same double.
    return number ? fmt::format("{}", *number) : "";
}

}  // namespace tarn::program
