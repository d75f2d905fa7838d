#include "report.h"

#include <nlohmann/json.hpp>

namespace tarn::program {
namespace {

using Json = nlohmann::ordered_json;

Json ToJson(const ReportedPart& part) {
    return {{"name", part.name}, {"owner", part.owner}};
}

Json ToJson(const ReportedCouple& couple) {
    Json json = {{"first", ToJson(couple.first)}, {"second", ToJson(couple.second)}};
    json["centre_mm"] = nullptr;
    if (couple.centre)
        json["centre_mm"] = Json::array({couple.centre->x, couple.centre->y, couple.centre->z});
    return json;
}

Json ToJson(const CheckSummary& summary) {
    return {{"bodies", summary.body_count},
            {"triangles_kept", summary.kept_triangle_count},
            {"triangles_dropped", summary.dropped_triangle_count},
            {"couples", summary.couple_count},
            {"interfering", summary.interfering_count},
            {"stopped_at_first", summary.stops_at_first && summary.interfering_count > 0},
            {"loading_seconds", summary.loading_seconds},
            {"building_seconds", summary.building_seconds},
            {"checking_seconds", summary.checking_seconds}};
}

}  // namespace

std::string FormatJson(const Report& report) {
    Json json = {{"summary", ToJson(report.summary)}, {"interferences", Json::array()}};
    for (const ReportedCouple& couple : report.couples) json["interferences"].push_back(ToJson(couple));
    // Names of files may be no UTF-8, which JSON must be: such bytes are replaced.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tarn::program
