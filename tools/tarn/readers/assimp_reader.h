#pragma once

#include "readers/model.h"

#include <string>

namespace tarn::program {

/// Reads a file through assimp: its tree of nodes, and the triangles of its meshes. Coordinates pass through
/// singles, and a file made to do harm can crash the library. Throws `FormatError` with the library's words.
Model ReadWithAssimp(const std::string& path, double millimetres_per_unit);

}  // namespace tarn::program
