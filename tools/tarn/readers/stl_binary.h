#pragma once

#include "readers/stl_reader.h"

#include <string_view>

namespace tarn::program {

/// Whether the bytes are as long as the facet count behind the 80-byte header promises.
bool HasExactBinaryStlSize(std::string_view bytes);

/// Reads binary STL: an 80-byte header, a facet count, 50 bytes a facet. Bytes behind the last facet are
/// accepted with a warning. The result may be empty. Throws `FormatError` for fewer facets than promised, for
/// data behind a count of 0, and for a coordinate that is not finite, naming the facet.
StlContent ReadBinaryStl(std::string_view bytes, double millimetres_per_unit);

}  // namespace tarn::program
