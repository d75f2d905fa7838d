#pragma once

#include "readers/gltf_document.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::program {

/// Returns the content of a file beside the glTF file, by its decoded relative path. Throws `FormatError`
/// where it cannot be had.
using LoadNeighbour = std::function<std::string(const std::string& relative_path)>;

/// The bytes of a file's buffers, each as long as the file says.
class GltfBuffers final {
public:
    /// `binary` must outlive this object. Throws `FormatError`, naming the buffer, for one that is absent or
    /// too short.
    GltfBuffers(const std::vector<GltfBufferSource>& sources,
                std::optional<std::string_view> binary,
                const LoadNeighbour& load_neighbour);
    GltfBuffers(const GltfBuffers&) = delete;
    GltfBuffers& operator=(const GltfBuffers&) = delete;

    const std::vector<std::string_view>& bytes() const { return bytes_; }

private:
    std::string_view ContentOf(const std::string& uri, const LoadNeighbour& load_neighbour);

    std::map<std::string, std::string> contents_;  // by address, so that one named often is held once
    std::vector<std::string_view> bytes_;
};

/// The content of `relative_path` below `folder`. Throws `FormatError` for an absolute path, for one that
/// leaves the folder, by its words or by a link, and for what is no regular file.
std::string LoadBelow(const std::string& folder, const std::string& relative_path);

}  // namespace tarn::program
