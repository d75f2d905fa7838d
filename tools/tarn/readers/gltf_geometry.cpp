#include "readers/gltf_geometry.h"

#include "readers/little_endian.h"
#include "readers/printable_text.h"
#include "readers/program_error.h"

#include <fmt/format.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>

namespace tarn::program {
namespace {

/// Triangles that the meshes of a file may hold together beyond its bytes. An honest triangle takes a byte at
/// least, but meshes that differ in colour alone share theirs, so there is room for that.
constexpr std::size_t kSharedTriangles = 4'000'000;

static_assert(sizeof(float) == 4, "the format's coordinates are IEEE singles");

/// Elements at equal distances inside a buffer, all of which lie in it.
struct Elements {
    std::string_view bytes;  ///< from the first element on
    std::size_t stride = 0;
    std::size_t count = 0;
    int component_type = 0;
};

std::size_t ComponentSize(int component_type) {
    switch (component_type) {
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
            return 1;
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
            return 2;
        default:
            return 4;
    }
}

/// The part of its buffer that a view shows.
std::string_view ViewedBytes(const tinygltf::Model& model,
                             int view_index,
                             const std::vector<std::string_view>& buffers) {
    if (view_index < 0) throw FormatError("has no buffer view, so no data");
    const auto index = static_cast<std::size_t>(view_index);
    if (index >= model.bufferViews.size())
        throw FormatError(fmt::format("bufferViews[{}] does not exist", index));
    const tinygltf::BufferView& view = model.bufferViews[index];
    const auto buffer = static_cast<std::size_t>(view.buffer);
    if (buffer >= buffers.size()) throw FormatError(fmt::format("buffers[{}] does not exist", buffer));
    const std::size_t size = buffers[buffer].size();
    if (view.byteOffset > size || view.byteLength > size - view.byteOffset) {
        throw FormatError(fmt::format("bufferViews[{}] ends behind its buffer", index));
    }
    return buffers[buffer].substr(view.byteOffset, view.byteLength);
}

Elements ElementsOf(const GltfDocument& document,
                    std::size_t accessor_index,
                    std::size_t component_count,
                    const std::vector<std::string_view>& buffers) {
    const tinygltf::Accessor& accessor = document.model.accessors[accessor_index];
    if (document.accessor_is_sparse[accessor_index]) throw FormatError("is sparse, which is not read");
    const std::string_view viewed = ViewedBytes(document.model, accessor.bufferView, buffers);
    const std::size_t size = component_count * ComponentSize(accessor.componentType);
    const std::size_t stated =
        document.model.bufferViews[static_cast<std::size_t>(accessor.bufferView)].byteStride;
    const std::size_t stride = stated == 0 ? size : stated;
    if (stride < size) throw FormatError("has elements that overlap");
    // In this form nothing can overflow, whatever the numbers are.
    const bool is_inside =
        accessor.count == 0 ||
        (accessor.byteOffset <= viewed.size() && size <= viewed.size() - accessor.byteOffset &&
         accessor.count - 1 <= (viewed.size() - accessor.byteOffset - size) / stride);
    if (!is_inside) throw FormatError("ends behind its buffer view");
    const std::string_view bytes =
        accessor.count == 0 ? std::string_view() : viewed.substr(accessor.byteOffset);
    return {bytes, stride, accessor.count, accessor.componentType};
}

/// The elements of an accessor that must hold what `type` and `is_allowed` say.
template <typename IsAllowed>
Elements CheckedElements(const GltfDocument& document,
                         int accessor,
                         int type,
                         const IsAllowed& is_allowed,
                         std::string_view expected,
                         const std::vector<std::string_view>& buffers) {
    const auto index = static_cast<std::size_t>(accessor);
    if (index >= document.model.accessors.size()) {
        throw FormatError(fmt::format("accessors[{}] does not exist", index));
    }
    try {
        const tinygltf::Accessor& stated = document.model.accessors[index];
        if (stated.type != type || !is_allowed(stated.componentType)) {
            throw FormatError(fmt::format("does not hold {}", expected));
        }
        return ElementsOf(document, index, type == TINYGLTF_TYPE_VEC3 ? 3 : 1, buffers);
    } catch (const FormatError& error) {
        throw FormatError(fmt::format("accessors[{}]: {}", index, error.what()));
    }
}

/// The corners of a primitive in their order, which an index list may give.
class Corners {
public:
    Corners(const Elements& positions, const std::optional<Elements>& indices)
        : positions_(positions),
          indices_(indices) {}

    std::size_t count() const { return indices_ ? indices_->count : positions_.count; }

    std::array<double, 3> At(std::size_t corner) const {
        const std::size_t vertex = VertexAt(corner);
        if (vertex >= positions_.count) {
            throw FormatError(
                fmt::format("index {} names vertex {}, there are {}", corner, vertex, positions_.count));
        }
        std::array<double, 3> point{};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::uint32_t word = UnsignedAt(
                positions_.bytes, vertex * positions_.stride + axis * sizeof(float), sizeof(float));
            const auto metres = static_cast<double>(std::bit_cast<float>(word));
            if (!std::isfinite(metres)) throw FormatError(fmt::format("vertex {} is not finite", vertex));
            point[axis] = metres * kMillimetresPerMetre;
        }
        return point;
    }

private:
    std::size_t VertexAt(std::size_t corner) const {
        if (!indices_) return corner;
        return UnsignedAt(indices_->bytes, corner * indices_->stride,
                          ComponentSize(indices_->component_type));
    }

    const Elements& positions_;
    const std::optional<Elements>& indices_;
};

std::size_t TriangleCount(int mode, std::size_t corner_count) {
    if (mode != TINYGLTF_MODE_TRIANGLES) return corner_count < 3 ? 0 : corner_count - 2;
    if (corner_count % 3 != 0) {
        throw FormatError(fmt::format("{} corners make no whole number of triangles", corner_count));
    }
    return corner_count / 3;
}

/// Which corners make a triangle. Those of a strip alternate, so that all look the same way.
std::array<std::size_t, 3> CornersOfTriangle(int mode, std::size_t triangle) {
    if (mode == TINYGLTF_MODE_TRIANGLES) return {3 * triangle, 3 * triangle + 1, 3 * triangle + 2};
    if (mode == TINYGLTF_MODE_TRIANGLE_FAN) return {triangle + 1, triangle + 2, 0};
    const std::size_t odd = triangle % 2;
    return {triangle, triangle + 1 + odd, triangle + 2 - odd};
}

bool HoldsTriangles(int mode) {
    if (mode > TINYGLTF_MODE_TRIANGLE_FAN) throw FormatError(fmt::format("mode {} does not exist", mode));
    return mode >= TINYGLTF_MODE_TRIANGLES;
}

std::size_t TotalSize(const std::vector<std::string_view>& buffers) {
    std::size_t size = 0;
    for (const std::string_view buffer : buffers) size += buffer.size();
    return size;
}

}  // namespace

GltfGeometry::GltfGeometry(const GltfDocument& document, const std::vector<std::string_view>& buffers)
    : document_(document),
      buffers_(buffers),
      triangles_left_(kSharedTriangles + TotalSize(buffers)) {}

std::vector<tarn::TriangleData> GltfGeometry::ReadMesh(std::size_t mesh) {
    const tinygltf::Mesh& stated = document_.model.meshes[mesh];
    std::vector<tarn::TriangleData> triangles;
    for (std::size_t index = 0; index < stated.primitives.size(); ++index) {
        try {
            ReadPrimitive(stated.primitives[index], triangles);
        } catch (const FormatError& error) {
            const std::string name = stated.name.empty() ? "" : " '" + Excerpt(stated.name) + "'";
            throw FormatError(
                fmt::format("meshes[{}]{}.primitives[{}]: {}", mesh, name, index, error.what()));
        }
    }
    return triangles;
}

void GltfGeometry::ReadPrimitive(const tinygltf::Primitive& primitive,
                                 std::vector<tarn::TriangleData>& triangles) {
    const auto position = primitive.attributes.find("POSITION");
    if (!HoldsTriangles(primitive.mode) || position == primitive.attributes.end()) {
        ++skipped_count_;
        return;
    }
    const auto is_float = [](int type) { return type == TINYGLTF_COMPONENT_TYPE_FLOAT; };
    const auto is_unsigned = [](int type) {
        return type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE ||
               type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT || type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT;
    };
    const Elements positions = CheckedElements(document_, position->second, TINYGLTF_TYPE_VEC3, is_float,
                                               "positions as three singles", buffers_);
    std::optional<Elements> indices;
    if (primitive.indices >= 0) {
        indices = CheckedElements(document_, primitive.indices, TINYGLTF_TYPE_SCALAR, is_unsigned,
                                  "indices as unsigned integers", buffers_);
    }
    const Corners corners(positions, indices);
    const std::size_t count = TriangleCount(primitive.mode, corners.count());
    if (count > triangles_left_) throw FormatError("the same data is used for too many triangles");
    triangles_left_ -= count;
    if (triangles.empty()) triangles.reserve(count);  // later ones grow it by the usual factor
    for (std::size_t triangle = 0; triangle < count; ++triangle) {
        const auto [first, second, third] = CornersOfTriangle(primitive.mode, triangle);
        const auto a = corners.At(first);
        const auto b = corners.At(second);
        const auto c = corners.At(third);
        triangles.push_back({a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2]});
    }
}

}  // namespace tarn::program
