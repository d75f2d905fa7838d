#pragma once

#include "mesh.h"

#include "tarn/collision_body.h"
#include "tarn/collision_configuration.h"
#include "tarn/collision_element.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tarn::program {

/// Gives names that occur more than once a number from the second on, " (2)" and so on, so that every name is
/// unique.
void MakeNamesUnique(std::vector<Mesh>& meshes);

/// A set of meshes, ready to be checked: one body each, where the mesh stands.
class Assembly final {
public:
    Assembly();
    Assembly(const Assembly&) = delete;
    Assembly& operator=(const Assembly&) = delete;

    /// Adds a mesh as one body and builds its hierarchy, in parallel. Returns how many triangles the engine
    /// kept.
    std::uint64_t Add(const Mesh& mesh);

    /// Enables all couples of the bodies added so far: of each couple, the body added earlier comes first.
    void EnableAllCouples() { configuration_->EnableAllCouples(); }

    std::size_t body_count() const { return bodies_.size(); }
    tarn::ICollisionConfiguration& configuration() { return *configuration_; }

private:
    // In this order, because the configuration refers to the bodies, and the bodies to the elements.
    std::vector<std::unique_ptr<tarn::ICollisionElement>> elements_;
    std::vector<std::unique_ptr<tarn::ICollisionBody>> bodies_;
    std::unique_ptr<tarn::ICollisionConfiguration> configuration_;
};

}  // namespace tarn::program
