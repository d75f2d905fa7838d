#include "readers/assimp_reader.h"

#include "readers/coordinate.h"
#include "readers/part_tree.h"
#include "readers/program_error.h"

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <array>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace tarn::program {
namespace {

class AssimpScene {
public:
    AssimpScene(const aiScene& scene, double millimetres_per_unit)
        : scene_(scene),
          millimetres_per_unit_(millimetres_per_unit) {}

    Model Read() {
        for (unsigned mesh = 0; mesh < scene_.mNumMeshes; ++mesh) ReadMesh(*scene_.mMeshes[mesh]);
        CollectNodes();
        AddParts(model_, nodes_, {0});
        if (model_.parts.empty()) throw FormatError("holds no triangles");
        return std::move(model_);
    }

private:
    void ReadMesh(const aiMesh& mesh) {
        std::vector<tarn::TriangleData> triangles;
        for (unsigned index = 0; index < mesh.mNumFaces; ++index) {
            const aiFace& face = mesh.mFaces[index];
            if (face.mNumIndices != 3) continue;  // points and lines; polygons are triangulated by now
            std::array<double, 9> c{};
            for (std::size_t corner = 0; corner < 3; ++corner) {
                const aiVector3D& vertex = mesh.mVertices[face.mIndices[corner]];
                c[3 * corner] = ConvertCoordinate(static_cast<double>(vertex.x), millimetres_per_unit_);
                c[3 * corner + 1] = ConvertCoordinate(static_cast<double>(vertex.y), millimetres_per_unit_);
                c[3 * corner + 2] = ConvertCoordinate(static_cast<double>(vertex.z), millimetres_per_unit_);
            }
            triangles.push_back({c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8]});
        }
        numbers_.emplace_back();
        if (triangles.empty()) return;
        numbers_.back() = model_.meshes.size();
        model_.meshes.push_back({mesh.mName.C_Str(), std::move(triangles)});
    }

    tarn::MATRIX PlacementOf(const aiMatrix4x4& stated) const {
        tarn::MATRIX matrix;
        for (unsigned row = 0; row < 3; ++row) {
            for (unsigned column = 0; column < 4; ++column) {
                matrix[4 * row + column] = static_cast<double>(stated[row][column]);
            }
            matrix[4 * row + 3] *= millimetres_per_unit_;
        }
        return matrix;
    }

    void CollectNodes() {
        std::vector<const aiNode*> pending = {scene_.mRootNode};  // in the order of `nodes_`
        nodes_.emplace_back();
        for (std::size_t index = 0; index < pending.size(); ++index) {
            const aiNode& stated = *pending[index];
            TreeNode node{stated.mName.C_Str(), {}, {}, PlacementOf(stated.mTransformation)};
            for (unsigned mesh = 0; mesh < stated.mNumMeshes; ++mesh) {
                const std::optional<std::size_t> number = numbers_.at(stated.mMeshes[mesh]);
                if (number) node.meshes.push_back(*number);
            }
            for (unsigned child = 0; child < stated.mNumChildren; ++child) {
                node.children.push_back(pending.size());
                pending.push_back(stated.mChildren[child]);
                nodes_.emplace_back();
            }
            nodes_[index] = std::move(node);
        }
    }

    const aiScene& scene_;
    double millimetres_per_unit_;
    std::vector<std::optional<std::size_t>> numbers_;  // of the library's meshes among the model's
    std::vector<TreeNode> nodes_;
    Model model_;
};

}  // namespace

Model ReadWithAssimp(const std::string& path, double millimetres_per_unit) {
    Assimp::Importer importer;
    // Axes as the file has them: results are to be found again in it.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_IGNORE_UP_DIRECTION, true);
    const aiScene* const scene = importer.ReadFile(path, aiProcess_Triangulate);
    if (scene == nullptr) throw FormatError(importer.GetErrorString());
    if (scene->mRootNode == nullptr) throw FormatError("holds no triangles");
    return AssimpScene(*scene, millimetres_per_unit).Read();
}

}  // namespace tarn::program
