#pragma once

#include "readers/mesh.h"
#include "readers/model.h"

#include "tarn/collision_body.h"
#include "tarn/collision_element.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace tarn::program {

/// A set of placed parts: one element for each mesh, one body for each part.
class Assembly final {
public:
    Assembly() = default;
    Assembly(const Assembly&) = delete;
    Assembly& operator=(const Assembly&) = delete;

    /// Adds a mesh, which parts then name by its number: 0 for the first one added.
    void AddMesh(const Mesh& mesh);
    /// Adds a part as one body and builds its hierarchy, in parallel. Returns how many triangles the engine
    /// kept.
    std::uint64_t AddPart(const Part& part);

    /// The same, the part's placement baked into its triangles, which become an element of its own. Returns
    /// how many triangles the engine kept both before and after.
    std::uint64_t AddBakedPart(const Part& part);

    /// In the order in which parts were added.
    tarn::ICollisionBody& body(std::size_t part) { return *bodies_[part]; }
    std::size_t body_count() const { return bodies_.size(); }

private:
    tarn::ICollisionBody& AddBody(const Part& part);

    // In this order, because the bodies refer to the elements.
    std::vector<std::unique_ptr<tarn::ICollisionElement>> elements_;
    std::vector<std::unique_ptr<tarn::ICollisionBody>> bodies_;
};

/// The number of the part that a body of an assembly stands for.
std::size_t PartOf(const tarn::ICollisionBody& body);

}  // namespace tarn::program
