#pragma once

#include <tiny_gltf.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::program {

/// Where the bytes of a buffer are.
struct GltfBufferSource {
    std::string uri;  ///< empty: the binary chunk
    std::size_t byte_length = 0;
};

/// The JSON of a glTF file: what bears on shapes and placements, each value of the right type.
struct GltfDocument {
    tinygltf::Model model;  ///< scenes, nodes, meshes, accessors and buffer views; no buffers, nothing else
    std::vector<GltfBufferSource> buffers;
    std::vector<bool> accessor_is_sparse;
    std::vector<std::string> warnings;
};

/// Parses the JSON. The library that turns it into structures takes a default where a value has the wrong
/// type, and reads things that shapes do not need, so it is given a copy that is checked and reduced.
/// Indices are not checked against what they count. Throws `FormatError`, naming the place, such as
/// "nodes[3].mesh".
GltfDocument ParseGltfDocument(std::string_view text);

}  // namespace tarn::program
