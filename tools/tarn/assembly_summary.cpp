#include "assembly_summary.h"

#include <fmt/format.h>

namespace tarn::program {

std::string FormatSummary(const AssemblySummary& summary, std::string_view findings) {
    return fmt::format(
        "{} bodies, {} triangles kept, {} dropped, {} couples offered, {}; loading {:.3f} s, "
        "building {:.3f} s, checking {:.3f} s\n",
        summary.body_count, summary.kept_triangle_count, summary.dropped_triangle_count, summary.couple_count,
        findings, summary.loading_seconds, summary.building_seconds, summary.checking_seconds);
}

}  // namespace tarn::program
