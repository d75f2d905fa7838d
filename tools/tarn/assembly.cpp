#include "assembly.h"

#include "mesh_size_check.h"

#include "tarn/factory.h"

#include <vector>

namespace tarn::program {
namespace {

/// Triangles in a leaf at most. Five suits most meshes: fewer cost memory and box tests, more cost triangle
/// tests.
constexpr std::int16_t kLeafNumber = 5;

}  // namespace

void Assembly::AddMesh(const Mesh& mesh) {
    elements_.push_back(tarn::make_unique_element(mesh.name, mesh.triangles));
}

std::uint64_t Assembly::AddPart(const Part& part) {
    tarn::ICollisionBody& body = AddBody(part);
    std::uint64_t kept_count = 0;
    for (const std::size_t mesh : part.meshes) {
        body.AddElement(elements_[mesh].get());
        kept_count += elements_[mesh]->GetTrianglesCount();
    }
    body.SetMatrix(part.placement);
    body.SetLeafNumber(kLeafNumber);
    return kept_count;
}

std::uint64_t Assembly::AddBakedPart(const Part& part) {
    std::vector<tarn::TriangleData> placed;
    for (const std::size_t mesh : part.meshes) {
        // Of the element, not of the mesh: what a check drops, a scene has no more.
        const auto more = Placed(elements_[mesh]->GetTriangles(), part.placement);
        placed.insert(placed.end(), more.begin(), more.end());
    }
    elements_.push_back(tarn::make_unique_element(part.name, placed));
    tarn::ICollisionBody& body = AddBody(part);
    body.AddElement(elements_.back().get());
    body.SetLeafNumber(kLeafNumber);
    return elements_.back()->GetTrianglesCount();
}

tarn::ICollisionBody& Assembly::AddBody(const Part& part) {
    // Couples are known by identifiers alone, so each body has one of its own, from 1 on.
    const auto identifier = static_cast<std::uint32_t>(bodies_.size() + 1);
    bodies_.push_back(tarn::make_unique_body(identifier, part.owner, part.name));
    return *bodies_.back();
}

std::size_t PartOf(const tarn::ICollisionBody& body) {
    return body.GetId() - 1;
}

}  // namespace tarn::program
