#pragma once

#include <cstdint>

namespace tarn {

/// What a dump writes. Any value but `Triangles` means boxes.
enum class DumpType : std::int32_t {
    Triangles = 0,      ///< the triangles of every body, in world coordinates
    BoundingBoxes = 1,  ///< the world boxes of the hierarchies' leaves, twelve triangles each, fewer if flat
};

}  // namespace tarn
