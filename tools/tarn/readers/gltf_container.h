#pragma once

#include <optional>
#include <string_view>

namespace tarn::program {

/// The parts of a glTF file in either of its forms, as views into its bytes.
struct GltfContainer {
    std::string_view json;
    std::optional<std::string_view> binary;  ///< the chunk behind the JSON of a GLB file
};

/// Whether the bytes start as every GLB file does.
bool LooksLikeGlb(std::string_view bytes);

/// Takes a file apart. Chunks of unknown kinds and bytes behind the stated length of a GLB file are passed
/// over. Throws `FormatError` where lengths contradict the bytes.
GltfContainer SplitGltf(std::string_view bytes);

}  // namespace tarn::program
