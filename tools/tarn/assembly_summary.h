#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarn::program {

/// What a command looked at, for the line that proves it.
struct AssemblySummary {
    std::size_t body_count = 0;
    std::uint64_t kept_triangle_count = 0;
    std::optional<std::uint64_t> dropped_triangle_count = 0;  ///< of scenes unknown
    std::uint64_t couple_count = 0;
    double loading_seconds = 0;
    double building_seconds = 0;
    double checking_seconds = 0;
};

/// "3 bodies, 36 triangles kept, 0 dropped": the line's beginning.
std::string FormatContent(const AssemblySummary& summary);

/// The summary as one line, with the findings in its middle.
std::string FormatSummary(const AssemblySummary& summary, std::string_view findings);

}  // namespace tarn::program
