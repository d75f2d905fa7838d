#include "readers/gltf_reader.h"

#include "readers/gltf_container.h"
#include "readers/gltf_document.h"
#include "readers/gltf_geometry.h"
#include "readers/part_tree.h"
#include "readers/printable_text.h"
#include "readers/program_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace tarn::program {
namespace {

/// The rotation of a quaternion x y z w of length 1, in rows.
std::array<double, 9> RotationOf(const std::vector<double>& quaternion) {
    // Three digits are the fewest that a file is trusted to mean a rotation by.
    constexpr double kLargestError = 0.001;
    double length = 0;
    for (const double component : quaternion) length = std::hypot(length, component);
    if (!(std::abs(length - 1) <= kLargestError)) {
        throw FormatError(fmt::format("has a rotation of length {:.6g}, which must be 1", length));
    }
    const double x = quaternion[0] / length;
    const double y = quaternion[1] / length;
    const double z = quaternion[2] / length;
    const double w = quaternion[3] / length;
    return {1 - 2 * (y * y + z * z), 2 * (x * y - z * w),     2 * (x * z + y * w),
            2 * (x * y + z * w),     1 - 2 * (x * x + z * z), 2 * (y * z - x * w),
            2 * (x * z - y * w),     2 * (y * z + x * w),     1 - 2 * (x * x + y * y)};
}

/// Columns of four in the file; the last row must be that of a placement.
tarn::MATRIX FromColumns(const std::vector<double>& columns) {
    if (columns[3] != 0 || columns[7] != 0 || columns[11] != 0 || columns[15] != 1) {
        throw FormatError("has a matrix whose last row is not 0 0 0 1");
    }
    tarn::MATRIX matrix;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 4; ++column)
            matrix[4 * row + column] = columns[4 * column + row];
    }
    return matrix;
}

tarn::MATRIX FromParts(const tinygltf::Node& node) {
    std::array<double, 9> rotation = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    if (!node.rotation.empty()) rotation = RotationOf(node.rotation);
    tarn::MATRIX matrix;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const double scale = node.scale.empty() ? 1 : node.scale[column];
            matrix[4 * row + column] = rotation[3 * row + column] * scale;
        }
        matrix[4 * row + 3] = node.translation.empty() ? 0 : node.translation[row];
    }
    return matrix;
}

tarn::MATRIX PlacementOf(const tinygltf::Node& node) {
    tarn::MATRIX matrix = node.matrix.empty() ? FromParts(node) : FromColumns(node.matrix);
    for (std::size_t index = 3; index < 12; index += 4) matrix[index] *= kMillimetresPerMetre;
    return matrix;
}

std::vector<std::size_t> Indices(const std::vector<int>& values) {
    return {values.begin(), values.end()};  // never negative: the document refuses those
}

std::vector<std::size_t> RootsOf(const tinygltf::Model& model) {
    const std::size_t scene = model.defaultScene < 0 ? 0 : static_cast<std::size_t>(model.defaultScene);
    if (scene < model.scenes.size()) return Indices(model.scenes[scene].nodes);
    if (model.defaultScene >= 0) throw FormatError(fmt::format("scenes[{}] does not exist", scene));

    std::vector<bool> has_parent(model.nodes.size(), false);
    for (const tinygltf::Node& node : model.nodes) {
        for (const std::size_t child : Indices(node.children)) {
            if (child < has_parent.size()) has_parent[child] = true;
        }
    }
    std::vector<std::size_t> roots;
    for (std::size_t index = 0; index < has_parent.size(); ++index) {
        if (!has_parent[index]) roots.push_back(index);
    }
    return roots;
}

class GltfReader {
public:
    GltfReader(const GltfDocument& document, const std::vector<std::string_view>& buffers)
        : document_(document),
          geometry_(document, buffers),
          mesh_numbers_(document.model.meshes.size()) {}

    Model Read() {
        std::vector<TreeNode> nodes;
        nodes.reserve(document_.model.nodes.size());
        for (const tinygltf::Node& node : document_.model.nodes)
            nodes.push_back(ReadNode(node, nodes.size()));
        AddParts(model_, nodes, RootsOf(document_.model));
        if (model_.parts.empty()) throw FormatError("holds no triangles");
        if (geometry_.skipped_count() > 0) {
            model_.warnings.push_back(fmt::format(
                "{} primitives without triangles (points, lines, or no positions) were passed over",
                geometry_.skipped_count()));
        }
        if (skinned_count_ > 0) {
            model_.warnings.push_back(fmt::format(
                "skins are not applied: {} nodes stand as their own matrices say", skinned_count_));
        }
        return std::move(model_);
    }

private:
    TreeNode ReadNode(const tinygltf::Node& node, std::size_t index) {
        try {
            TreeNode read{node.name, Indices(node.children), {}, PlacementOf(node)};
            if (node.mesh >= 0) {
                const std::optional<std::size_t> mesh = MeshNumber(static_cast<std::size_t>(node.mesh));
                if (mesh) read.meshes.push_back(*mesh);
                if (node.skin >= 0) ++skinned_count_;
            }
            return read;
        } catch (const FormatError& error) {
            const std::string name = node.name.empty() ? "" : " '" + Excerpt(node.name) + "'";
            throw FormatError(fmt::format("node {}{}: {}", index, name, error.what()));
        }
    }

    /// Where a mesh of the file stands among those read, which it joins when it is met first. None without
    /// triangles.
    std::optional<std::size_t> MeshNumber(std::size_t mesh) {
        if (mesh >= mesh_numbers_.size())
            throw FormatError(fmt::format("carries meshes[{}], which does not exist", mesh));
        Known& known = mesh_numbers_[mesh];
        if (!known.is_read) {
            known.is_read = true;
            std::vector<tarn::TriangleData> triangles = geometry_.ReadMesh(mesh);
            if (!triangles.empty()) {
                known.number = model_.meshes.size();
                model_.meshes.push_back({document_.model.meshes[mesh].name, std::move(triangles)});
            }
        }
        return known.number;
    }

    struct Known {
        bool is_read = false;
        std::optional<std::size_t> number;
    };

    const GltfDocument& document_;
    GltfGeometry geometry_;
    std::vector<Known> mesh_numbers_;  // by their numbers in the file
    Model model_;
    std::size_t skinned_count_ = 0;
};

}  // namespace

Model ReadGltf(std::string_view bytes, const LoadNeighbour& load_neighbour) {
    if (bytes.empty()) throw FormatError("is empty, holds no triangles");
    const GltfContainer container = SplitGltf(bytes);
    const GltfDocument document = ParseGltfDocument(container.json);
    const GltfBuffers buffers(document.buffers, container.binary, load_neighbour);
    return GltfReader(document, buffers.bytes()).Read();
}

}  // namespace tarn::program
