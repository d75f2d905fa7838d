#pragma once

#include "readers/length_unit.h"
#include "readers/model.h"

#include <string>

namespace tarn::program {

/// Reads the file at `path`, whose name's ending tells the format: STL, OBJ, glTF and GLB, others only in
/// builds with assimp. What has no ending is taken as GLB if it begins so, else as STL. `unit` is that of the
/// coordinates, unless the format states one. Throws `ProgramError`, naming the file and the place in it.
Model ReadModelFile(const std::string& path, LengthUnit unit);

/// The formats that this build reads, for the help.
std::string ReadableFormats();

}  // namespace tarn::program
