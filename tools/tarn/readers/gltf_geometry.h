#pragma once

#include "readers/gltf_document.h"

#include "tarn/triangle_data.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::program {

/// The format's lengths are metres.
inline constexpr double kMillimetresPerMetre = 1000;

/// Reads the triangles of a file's meshes.
class GltfGeometry final {
public:
    /// Both arguments must outlive this object.
    GltfGeometry(const GltfDocument& document, const std::vector<std::string_view>& buffers);

    /// The triangles of all primitives of a mesh, in millimetres, in file order; empty where the mesh holds
    /// points and lines alone. Every access is checked against the buffer views and buffers. Throws
    /// `FormatError`, naming the mesh, and also where primitives that share data would together hold far more
    /// triangles than the file has bytes.
    std::vector<tarn::TriangleData> ReadMesh(std::size_t mesh);

    /// How many primitives were passed over because they are points or lines.
    std::size_t skipped_count() const { return skipped_count_; }

private:
    void ReadPrimitive(const tinygltf::Primitive& primitive, std::vector<tarn::TriangleData>& triangles);

    const GltfDocument& document_;
    const std::vector<std::string_view>& buffers_;
    std::size_t triangles_left_;
    std::size_t skipped_count_ = 0;
};

}  // namespace tarn::program
