#include "peers/placed_assembly.h"

#include "core/triangle.h"
#include "readers/model_file.h"

#include <cstdlib>
#include <map>

namespace tarn::bench {

PlacedAssembly ReadAssembly(const std::filesystem::path& path) {
    const program::Model model = program::ReadModelFile(path.string(), program::LengthUnit::Millimetre);
    PlacedAssembly assembly;
    // Parts that carry the same meshes share one here, as they share elements in the program.
    std::map<std::vector<std::size_t>, std::size_t> mesh_of_part;
    for (const program::Part& part : model.parts) {
        const auto [mesh, is_new] = mesh_of_part.try_emplace(part.meshes, assembly.meshes.size());
        if (is_new) {
            Triangles fused;
            for (const std::size_t i : part.meshes) {
                fused.insert(fused.end(), model.meshes[i].triangles.begin(), model.meshes[i].triangles.end());
            }
            assembly.meshes.push_back(std::move(fused));
        }
        assembly.bodies.push_back({part.name, mesh->second, part.placement});
    }
    return assembly;
}

Triangles ReadFused(const std::filesystem::path& path) {
    const PlacedAssembly assembly = ReadAssembly(path);
    Triangles fused;
    for (const PlacedAssembly::Body& body : assembly.bodies) {
        for (const TriangleData& triangle : assembly.meshes[body.mesh]) {
            fused.push_back(details::Place(body.placement, triangle));
        }
    }
    return fused;
}

std::filesystem::path DataFolder() {
    const char* folder = std::getenv("TARN_DATA");
    return folder ? folder : TARN_DATA_DIR;
}

}  // namespace tarn::bench
