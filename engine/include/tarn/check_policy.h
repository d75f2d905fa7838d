#pragma once

#include <cstdint>

namespace tarn {

/// What a check collects, and whether it ends at the first couple found: one that interferes, or, in a
/// clearance check, one that intersects or comes within its clearance.
enum class CheckPolicy : std::int32_t {
    FirstInterferenceStop = 0,               ///< at most one couple, any of those found
    FirstInterferenceStopWithTriangles = 1,  ///< the same with one pair of triangles
    AllInterferences = 2,                    ///< every couple found
    AllInterferencesWithTriangles = 3,       ///< the same with one pair of triangles each
};

}  // namespace tarn
