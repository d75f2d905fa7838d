#include "assembly.h"

#include "tarn/factory.h"

#include <algorithm>

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
    // Couples are known by identifiers alone, so each body has one of its own, from 1 on.
    const auto identifier = static_cast<std::uint32_t>(bodies_.size() + 1);
    bodies_.push_back(tarn::make_unique_body(identifier, part.owner, part.name));
    tarn::ICollisionBody& body = *bodies_.back();
    std::uint64_t kept_count = 0;
    for (const std::size_t mesh : part.meshes) {
        body.AddElement(elements_[mesh].get());
        kept_count += elements_[mesh]->GetTrianglesCount();
    }
    body.SetMatrix(part.placement);
    body.SetLeafNumber(kLeafNumber);
    return kept_count;
}

std::size_t PartOf(const tarn::ICollisionBody& body) {
    return body.GetId() - 1;
}

std::pair<std::size_t, std::size_t> PartsOf(const tarn::ICollisionBody& first,
                                            const tarn::ICollisionBody& second) {
    return std::minmax({PartOf(first), PartOf(second)});
}

}  // namespace tarn::program
