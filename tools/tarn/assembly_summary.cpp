#include "assembly_summary.h"

#include <fmt/format.h>

namespace tarn::program {

std::string FormatContent(const AssemblySummary& summary) {
    std::string text =
        fmt::format("{} bodies, {} triangles kept", summary.body_count, summary.kept_triangle_count);
    if (summary.dropped_triangle_count) text += fmt::format(", {} dropped", *summary.dropped_triangle_count);
    return text;
}

std::string FormatSummary(const AssemblySummary& summary, std::string_view findings) {
    return fmt::format("{}, {} couples offered, {}; loading {:.3f} s, building {:.3f} s, checking {:.3f} s\n",
                       FormatContent(summary), summary.couple_count, findings, summary.loading_seconds,
                       summary.building_seconds, summary.checking_seconds);
}

}  // namespace tarn::program
