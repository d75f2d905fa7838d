#include "info_report.h"

#include "readers/printable_text.h"
#include "report_json.h"
#include "text_table.h"

#include <fmt/format.h>

#include <algorithm>

namespace tarn::program {
namespace {

std::string TextOf(const Point& point) {
    return fmt::format("({}, {}, {})", FormatMillimetres(point.x), FormatMillimetres(point.y),
                       FormatMillimetres(point.z));
}

}  // namespace

void Extents::Include(const Point& point) {
    const Point least = low.value_or(point);
    const Point most = high.value_or(point);
    low = Point{std::min(least.x, point.x), std::min(least.y, point.y), std::min(least.z, point.z)};
    high = Point{std::max(most.x, point.x), std::max(most.y, point.y), std::max(most.z, point.z)};
}

void Extents::Include(const Extents& other) {
    if (other.low) Include(*other.low);
    if (other.high) Include(*other.high);
}

std::string FormatTable(const InfoReport& report) {
    TextTable table({"body", "owner", "kept", "dropped", "depth", "from x [mm]", "y [mm]", "z [mm]",
                     "to x [mm]", "y [mm]", "z [mm]"},
                    2);
    for (const BodyInfo& body : report.bodies) {
        const auto& dropped_count = body.dropped_triangle_count;
        TextTable::Row row = {Printable(body.part.short_name), Printable(body.part.owner),
                              std::to_string(body.kept_triangle_count),
                              dropped_count ? std::to_string(*dropped_count) : "-",
                              std::to_string(body.depth)};
        AddPoint(row, body.extents.low);
        AddPoint(row, body.extents.high);
        table.Add(std::move(row));
    }
    return table.Format();
}

std::string FormatSummary(const InfoReport& report) {
    std::string text =
        fmt::format("{}: {}, {} owners, {} couples", report.kind, FormatContent(report.summary),
                    report.owner_count, report.summary.couple_count);
    if (report.clearances) {
        text += fmt::format(", clearances {} to {} mm", FormatMillimetres(report.clearances->first),
                            FormatMillimetres(report.clearances->second));
    }
    if (report.extents.low) {
        text += fmt::format(", from {} to {} mm", TextOf(*report.extents.low), TextOf(*report.extents.high));
    }
    return text + "\n";
}

std::string FormatJson(const InfoReport& report) {
    const auto& clearances = report.clearances;
    const AssemblySummary& summary = report.summary;
    ReportJson json = {{"summary",
                        {{"kind", report.kind},
                         {"bodies", summary.body_count},
                         {"owners", report.owner_count},
                         {"triangles_kept", summary.kept_triangle_count},
                         {"triangles_dropped", JsonOf(summary.dropped_triangle_count)},
                         {"couples", summary.couple_count},
                         {"least_clearance_mm", clearances ? ReportJson(clearances->first) : ReportJson()},
                         {"largest_clearance_mm", clearances ? ReportJson(clearances->second) : ReportJson()},
                         {"min_mm", JsonOf(report.extents.low)},
                         {"max_mm", JsonOf(report.extents.high)}}},
                       {"bodies", ReportJson::array()}};
    for (const BodyInfo& body : report.bodies) {
        json["bodies"].push_back({{"name", body.part.name},
                                  {"owner", body.part.owner},
                                  {"triangles_kept", body.kept_triangle_count},
                                  {"triangles_dropped", JsonOf(body.dropped_triangle_count)},
                                  {"depth", body.depth},
                                  {"min_mm", JsonOf(body.extents.low)},
                                  {"max_mm", JsonOf(body.extents.high)}});
    }
    return FormatJson(json);
}

}  // namespace tarn::program
