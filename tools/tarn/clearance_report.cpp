#include "clearance_report.h"

#include "readers/printable_text.h"
#include "report_csv.h"
#include "report_json.h"
#include "text_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tarn::program {
namespace {

const char* TextOf(Nearness nearness) {
    switch (nearness) {
        case Nearness::Intersecting:
            return "intersecting";
        case Nearness::Touching:
            return "touching";
        case Nearness::TooNear:
            return "too near";
        case Nearness::NotJudged:
            break;
    }
    return "not judged";
}

/// The same for programs: one word.
std::string KeyOf(Nearness nearness) {
    std::string key = TextOf(nearness);
    std::ranges::replace(key, ' ', '_');
    return key;
}

constexpr Nearness kAll[] = {Nearness::Intersecting, Nearness::Touching, Nearness::TooNear,
                             Nearness::NotJudged};

}  // namespace

std::size_t CountOf(const ClearanceReport& report, Nearness nearness) {
    return static_cast<std::size_t>(std::ranges::count(report.couples, nearness, &NearCouple::nearness));
}

std::string FormatTable(const ClearanceReport& report) {
    if (report.couples.empty()) return {};
    const bool shows_clearances = !report.clearance;
    TextTable::Row heading = {"first",  "second", "state",     "distance [mm]", "from x [mm]",
                              "y [mm]", "z [mm]", "to x [mm]", "y [mm]",        "z [mm]"};
    if (shows_clearances) heading.insert(heading.begin() + 3, "clearance [mm]");
    TextTable table(std::move(heading), 3);
    for (const NearCouple& couple : report.couples) {
        TextTable::Row row = {Printable(couple.first.short_name), Printable(couple.second.short_name),
                              TextOf(couple.nearness)};
        if (shows_clearances) row.push_back(FormatMillimetres(couple.clearance));
        row.push_back(couple.distance ? FormatMillimetres(*couple.distance) : "-");
        AddPoint(row, couple.first_point);
        AddPoint(row, couple.second_point);
        table.Add(std::move(row));
    }
    return table.Format();
}

std::string FormatSummary(const ClearanceReport& report) {
    std::string findings;
    for (const Nearness nearness : kAll) {
        const char* const separator = findings.empty() ? "" : ", ";
        findings += fmt::format("{}{} {}", separator, CountOf(report, nearness), TextOf(nearness));
    }
    return FormatSummary(report.summary, findings);
}

std::string FormatCsv(const ClearanceReport& report) {
    const bool shows_clearances = !report.clearance;
    std::string csv = fmt::format(
        "{},state{},distance_mm,first_x_mm,first_y_mm,first_z_mm,second_x_mm,second_y_mm,second_z_mm\n",
        kCsvPartColumns, shows_clearances ? ",clearance_mm" : "");
    for (const NearCouple& couple : report.couples) {
        const std::string clearance = shows_clearances ? fmt::format(",{}", couple.clearance) : "";
        csv += fmt::format("{},{}{},{},{},{}\n", CsvOfParts(couple.first, couple.second),
                           KeyOf(couple.nearness), clearance, CsvOf(couple.distance),
                           CsvOf(couple.first_point), CsvOf(couple.second_point));
    }
    return csv;
}

std::string FormatJson(const ClearanceReport& report) {
    ReportJson findings = ReportJson::object();
    if (report.clearance) findings["clearance_mm"] = *report.clearance;
    for (const Nearness nearness : kAll) findings[KeyOf(nearness)] = CountOf(report, nearness);
    ReportJson json = {{"summary", JsonOf(report.summary, findings)}, {"couples", ReportJson::array()}};
    for (const NearCouple& couple : report.couples) {
        ReportJson entry = JsonOfParts(couple.first, couple.second);
        entry["state"] = KeyOf(couple.nearness);
        if (!report.clearance) entry["clearance_mm"] = couple.clearance;
        entry["distance_mm"] = JsonOf(couple.distance);
        entry["first_point_mm"] = JsonOf(couple.first_point);
        entry["second_point_mm"] = JsonOf(couple.second_point);
        json["couples"].push_back(std::move(entry));
    }
    return FormatJson(json);
}

}  // namespace tarn::program
