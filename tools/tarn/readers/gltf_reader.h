#pragma once

#include "readers/gltf_buffers.h"
#include "readers/model.h"

#include <string_view>

namespace tarn::program {

/// Reads the bytes of a glTF 2 file, as text or GLB, and converts its metres to millimetres.
///  (1) The nodes of the default scene count, else those of the first scene, else all that have no parent.
///      Each that carries a mesh with triangles is a part; parts of one mesh share it.
///  (2) Placements are applied as they stand: scales and mirrors too. A rotation is a quaternion of length 1;
///      one that is off by up to 0.001, as few digits leave it, is brought to 1, any other is refused.
///  (3) Triangle lists, strips and fans are read, points and lines passed over with a warning.
///  (4) Skins, morph targets and animations are not applied; skins give a warning.
///  (5) Compressed or otherwise extended geometry is refused by the name of the extension, sparse accessors
///      by their number.
/// Throws `FormatError`, naming the place.
Model ReadGltf(std::string_view bytes, const LoadNeighbour& load_neighbour);

}  // namespace tarn::program
