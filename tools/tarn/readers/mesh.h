#pragma once

#include "tarn/triangle_data.h"

#include <string>
#include <vector>

namespace tarn::program {

/// Triangles as a file holds them once, however many parts they make: what becomes one element.
struct Mesh {
    std::string name;
    std::vector<tarn::TriangleData>
        triangles;  ///< local coordinates in millimetres, all finite, in file order
};

}  // namespace tarn::program
