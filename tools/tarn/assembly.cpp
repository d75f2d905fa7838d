#include "assembly.h"

#include "tarn/factory.h"

#include <fmt/format.h>

#include <unordered_map>

namespace tarn::program {
namespace {

/// Triangles in a leaf at most. Five suits most meshes: fewer cost memory and box tests, more cost triangle
/// tests.
constexpr std::int16_t kLeafNumber = 5;

/// Meshes from files belong to nobody.
constexpr std::uint64_t kOwner = 0;

}  // namespace

void MakeNamesUnique(std::vector<Mesh>& meshes) {
    std::unordered_map<std::string, int>
        last_numbers;  // of each name in use, the highest number tried behind it
    for (Mesh& mesh : meshes) {
        const std::string given = mesh.name;
        int& last_number = last_numbers.try_emplace(given, 0).first->second;
        while (++last_number > 1) {
            mesh.name = fmt::format("{} ({})", given, last_number);
            if (last_numbers.try_emplace(mesh.name, 1).second) break;
        }
    }
}

Assembly::Assembly() : configuration_(tarn::make_unique_configuration()) {}

std::uint64_t Assembly::Add(const Mesh& mesh) {
    elements_.push_back(tarn::make_unique_element(mesh.name, mesh.triangles));
    // Couples are known by identifiers alone, so each body has one of its own, from 1 on.
    const auto identifier = static_cast<std::uint32_t>(bodies_.size() + 1);
    bodies_.push_back(tarn::make_unique_body(identifier, kOwner, mesh.name));
    bodies_.back()->AddElement(elements_.back().get());
    bodies_.back()->SetLeafNumber(kLeafNumber);
    configuration_->AddElement(bodies_.back().get());
    return elements_.back()->GetTrianglesCount();
}

}  // namespace tarn::program
