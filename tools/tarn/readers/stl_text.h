#pragma once

#include "tarn/triangle_data.h"

#include <string_view>
#include <vector>

namespace tarn::program {

/// Whether the bytes start with "solid", in any case, behind blanks or a byte order mark, and go on like
/// text: a word of the format opens the second line, or no byte near the start is zero.
bool LooksLikeTextStl(std::string_view bytes);

/// Reads text STL. Words may be separated by any blanks and line ends, in upper or lower case. `endsolid` may
/// be missing, and there may be several solids. The result may be empty. Throws `FormatError`, naming the
/// line.
std::vector<tarn::TriangleData> ReadTextStl(std::string_view bytes, double millimetres_per_unit);

}  // namespace tarn::program
