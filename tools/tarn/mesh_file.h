#pragma once

#include "length_unit.h"
#include "mesh.h"

#include <string>
#include <vector>

namespace tarn::program {

/// A mesh, and what the user should know about the file it came from.
struct MeshFile {
    Mesh mesh;
    std::vector<std::string> warnings;  ///< one sentence each, without the file's name
};

/// Reads the STL file at `path` as one mesh that is named by the path as given. `unit` is that of the file's
/// coordinates. Throws `ProgramError`, naming the file and the place in it.
MeshFile ReadMeshFile(const std::string& path, LengthUnit unit);

}  // namespace tarn::program
