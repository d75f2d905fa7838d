#include "report.h"

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

std::string FormatCsv(const Report& report) {
    std::string csv = "first,second,first_owner,second_owner,centre_x_mm,centre_y_mm,centre_z_mm\n";
    for (const ReportedCouple& couple : report.couples) {
        csv += fmt::format("{},{},{},{},", Field(couple.first.name), Field(couple.second.name),
                           Field(couple.first.owner), Field(couple.second.owner));
        // Without a format, numbers get the fewest digits that give back the same double.
        csv += couple.centre ? fmt::format("{},{},{}\n", couple.centre->x, couple.centre->y, couple.centre->z)
                             : ",,\n";
    }
    return csv;
}

}  // namespace tarn::program
