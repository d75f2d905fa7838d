#pragma once

#include "tarn/triangle_data.h"

#include <string>
#include <vector>

namespace tarn::program {

/// One part as it was read: what becomes one body.
struct Mesh {
    std::string name;  ///< unique among the meshes of one run
    std::vector<tarn::TriangleData>
        triangles;  ///< world coordinates in millimetres, all finite, in file order
};

}  // namespace tarn::program
