#pragma once

#include "tarn/triangle_data.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn::program {

/// What an STL file holds.
struct StlContent {
    std::vector<tarn::TriangleData> triangles;  ///< in millimetres, all finite, in file order, never empty
    std::vector<std::string> warnings;          ///< what was odd and yet accepted, one sentence each
};

/// Reads the bytes of an STL file, text or binary, and converts its coordinates to millimetres.
///  (1) Binary is what has exactly the size that its facet count promises, whatever its header says. Else
///      text is what starts with "solid", in any case, and goes on like text. The rest is taken as binary.
///  (2) Normals, attribute bytes and the names of solids mean nothing; all solids of a file go into one list.
///  (3) Every coordinate is finite, or the file is refused; memory is bounded by the bytes given, not by a
///      count in them.
/// Throws `FormatError`, naming the line (text) or the facet (binary), both counted from 1.
StlContent ReadStl(std::string_view bytes, double millimetres_per_unit);

}  // namespace tarn::program
