#include "check_report.h"

#include "readers/printable_text.h"
#include "report_csv.h"
#include "report_json.h"
#include "text_table.h"

#include <fmt/format.h>

namespace tarn::program {
namespace {

bool IsCutShort(const CheckReport& report) {
    return report.stops_at_first && !report.couples.empty();
}

}  // namespace

std::string FormatTable(const CheckReport& report) {
    if (report.couples.empty()) return {};
    TextTable table({"first", "second", "centre x [mm]", "y [mm]", "z [mm]"}, 2);
    for (const InterferingCouple& couple : report.couples) {
        TextTable::Row row = {Printable(couple.first.short_name), Printable(couple.second.short_name)};
        AddPoint(row, couple.centre);
        table.Add(std::move(row));
    }
    return table.Format();
}

std::string FormatCsv(const CheckReport& report) {
    std::string csv = fmt::format("{},centre_x_mm,centre_y_mm,centre_z_mm\n", kCsvPartColumns);
    for (const InterferingCouple& couple : report.couples) {
        csv += CsvOfParts(couple.first, couple.second) + "," + CsvOf(couple.centre) + "\n";
    }
    return csv;
}

std::string FormatJson(const CheckReport& report) {
    const ReportJson findings = {{"interfering", report.couples.size()},
                                 {"stopped_at_first", IsCutShort(report)}};
    ReportJson json = {{"summary", JsonOf(report.summary, findings)}, {"interferences", ReportJson::array()}};
    for (const InterferingCouple& couple : report.couples) {
        ReportJson entry = JsonOfParts(couple.first, couple.second);
        entry["centre_mm"] = JsonOf(couple.centre);
        json["interferences"].push_back(std::move(entry));
    }
    return FormatJson(json);
}

std::string FormatSummary(const CheckReport& report) {
    return FormatSummary(report.summary, fmt::format("{} interfering{}", report.couples.size(),
                                                     IsCutShort(report) ? " (stopped at the first)" : ""));
}

}  // namespace tarn::program
