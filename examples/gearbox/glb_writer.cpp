#include "gearbox/glb_writer.h"

#include <tiny_gltf.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <stdexcept>

namespace gearbox {

namespace {

constexpr double kMetresPerMillimetre = 0.001;

using Vertex = std::array<float, 3>;

/// A solid with every vertex once.
struct WeldedMesh {
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> indices;
};

WeldedMesh Weld(const Solid& solid) {
    WeldedMesh mesh;
    std::map<Vertex, std::uint32_t> index_of;
    const auto add = [&](double x, double y, double z) {
        const Vertex vertex{static_cast<float>(x * kMetresPerMillimetre),
                            static_cast<float>(y * kMetresPerMillimetre),
                            static_cast<float>(z * kMetresPerMillimetre)};
        const auto [at, is_new] =
            index_of.try_emplace(vertex, static_cast<std::uint32_t>(mesh.vertices.size()));
        if (is_new) mesh.vertices.push_back(vertex);
        mesh.indices.push_back(at->second);
    };
    for (const tarn::TriangleData& t : solid) {
        add(t.v0x, t.v0y, t.v0z);
        add(t.v1x, t.v1y, t.v1z);
        add(t.v2x, t.v2y, t.v2z);
    }
    return mesh;
}

/// Builds the document part by part.
class Document {
public:
    Document() {
        model_.asset.version = "2.0";
        model_.buffers.emplace_back();
        root_ = AddNode("gearbox");
        model_.scenes.emplace_back();
        model_.scenes[0].nodes = {root_};
        model_.defaultScene = 0;
    }

    void Add(const Part& part) {
        const auto [group, is_new] = group_nodes_.try_emplace(part.group, -1);
        if (is_new) {
            group->second = AddNode(GroupName(part.group));
            NodeAt(root_).children.push_back(group->second);
        }
        const int node = AddNode(part.name);
        NodeAt(node).mesh = AddMesh(part);
        NodeAt(group->second).children.push_back(node);
    }

    void Write(const std::filesystem::path& file) {
        // To a stream of ours: the library's own file output does not notice failures.
        std::ofstream stream(file, std::ios::binary);
        const bool is_written = tinygltf::TinyGLTF().WriteGltfSceneToStream(&model_, stream, false, true);
        stream.close();
        if (!is_written || !stream) throw std::runtime_error("Cannot write " + file.string() + ".");
    }

private:
    tinygltf::Node& NodeAt(int node) { return model_.nodes[static_cast<std::size_t>(node)]; }

    int AddNode(const std::string& name) {
        model_.nodes.emplace_back();
        model_.nodes.back().name = name;
        return static_cast<int>(model_.nodes.size()) - 1;
    }

    int AddMesh(const Part& part) {
        const WeldedMesh welded = Weld(part.solid);
        tinygltf::Primitive primitive;
        primitive.mode = TINYGLTF_MODE_TRIANGLES;
        primitive.attributes["POSITION"] = AddPositions(welded.vertices);
        primitive.indices = AddAccessor(welded.indices.data(), welded.indices.size(), sizeof(std::uint32_t),
                                        TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER);
        model_.accessors.back().componentType = TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT;
        model_.accessors.back().type = TINYGLTF_TYPE_SCALAR;
        model_.meshes.emplace_back();
        model_.meshes.back().name = part.name;
        model_.meshes.back().primitives.push_back(primitive);
        return static_cast<int>(model_.meshes.size()) - 1;
    }

    int AddPositions(const std::vector<Vertex>& vertices) {
        const int index =
            AddAccessor(vertices.data(), vertices.size(), sizeof(Vertex), TINYGLTF_TARGET_ARRAY_BUFFER);
        tinygltf::Accessor& accessor = model_.accessors.back();
        accessor.componentType = TINYGLTF_COMPONENT_TYPE_FLOAT;
        accessor.type = TINYGLTF_TYPE_VEC3;
        // The format demands the bounds of positions.
        accessor.minValues.assign(3, std::numeric_limits<double>::max());
        accessor.maxValues.assign(3, std::numeric_limits<double>::lowest());
        for (const Vertex& vertex : vertices) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const double value = static_cast<double>(vertex[axis]);
                accessor.minValues[axis] = std::min(accessor.minValues[axis], value);
                accessor.maxValues[axis] = std::max(accessor.maxValues[axis], value);
            }
        }
        return index;
    }

    int AddAccessor(const void* items, std::size_t count, std::size_t item_size, int target) {
        std::vector<unsigned char>& bytes = model_.buffers[0].data;
        tinygltf::BufferView view;
        view.buffer = 0;
        view.byteOffset = bytes.size();
        view.byteLength = count * item_size;
        view.target = target;
        bytes.resize(bytes.size() + view.byteLength);
        std::memcpy(bytes.data() + view.byteOffset, items, view.byteLength);
        model_.bufferViews.push_back(view);
        tinygltf::Accessor accessor;
        accessor.bufferView = static_cast<int>(model_.bufferViews.size()) - 1;
        accessor.count = count;
        model_.accessors.push_back(accessor);
        return static_cast<int>(model_.accessors.size()) - 1;
    }

    tinygltf::Model model_;
    int root_ = -1;
    std::map<Group, int> group_nodes_;
};

}  // namespace

void WriteGlb(const std::filesystem::path& file, const std::vector<Part>& parts) {
    Document document;
    for (const Part& part : parts) document.Add(part);
    document.Write(file);
}

}  // namespace gearbox
