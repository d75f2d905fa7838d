#include "report_json.h"

namespace tarn::program {
namespace {

ReportJson JsonOf(const ReportedPart& part) {
    return {{"name", part.name}, {"owner", part.owner}};
}

}  // namespace

ReportJson JsonOfParts(const ReportedPart& first, const ReportedPart& second) {
    return {{"first", JsonOf(first)}, {"second", JsonOf(second)}};
}

ReportJson JsonOf(const std::optional<Point>& point) {
    return point ? ReportJson::array({point->x, point->y, point->z}) : ReportJson();
}

ReportJson JsonOf(const std::optional<double>& number) {
    return number ? ReportJson(*number) : ReportJson();
}

ReportJson JsonOf(const std::optional<std::uint64_t>& count) {
    return count ? ReportJson(*count) : ReportJson();
}

ReportJson JsonOf(const AssemblySummary& summary, const ReportJson& findings) {
    ReportJson json = {{"bodies", summary.body_count},
                       {"triangles_kept", summary.kept_triangle_count},
                       {"triangles_dropped", JsonOf(summary.dropped_triangle_count)},
                       {"couples", summary.couple_count}};
    json.update(findings);
    json["loading_seconds"] = summary.loading_seconds;
    json["building_seconds"] = summary.building_seconds;
    json["checking_seconds"] = summary.checking_seconds;
    return json;
}

std::string FormatJson(const ReportJson& json) {
    return json.dump(2, ' ', false, ReportJson::error_handler_t::replace) + "\n";
}

}  // namespace tarn::program
