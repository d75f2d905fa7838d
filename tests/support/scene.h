#pragma once

#include "core/collision_body.h"
#include "support/meshes.h"

#include "tarn/collision_configuration.h"
#include "tarn/collision_element.h"
#include "tarn/matrix.h"
#include "tarn/proximity_configuration.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tarn::test {

/// Bodies with their elements and a configuration of each kind, all owned here. `AddBody` counts identifiers
/// from 1, so tests that remove bodies must mind which identifiers contain which bits.
class Scene {
public:
    explicit Scene(std::int16_t leaf_number = 5);
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Adds an element that bodies may share.
    ICollisionElement* AddElement(const Mesh& mesh);
    /// Adds a body over elements and puts it into both configurations, without couples. It is built, unless
    /// `leaf_number` is 0.
    details::CollisionBody* Add(std::uint32_t id,
                                std::uint64_t owner,
                                const std::string& name,
                                std::int16_t leaf_number,
                                const std::vector<ICollisionElement*>& elements,
                                const MATRIX& placement = {});
    /// As `Add`, with the scene's leaf number.
    details::CollisionBody* AddBody(ICollisionElement* element,
                                    const MATRIX& placement,
                                    std::uint64_t owner = 0);
    details::CollisionBody* AddBody(const Mesh& mesh, const MATRIX& placement = {}, std::uint64_t owner = 0);

    ICollisionConfiguration& Configuration() const { return *configuration_; }
    IProximityConfiguration& Clearances() const { return *clearances_; }
    const std::vector<std::unique_ptr<details::CollisionBody>>& Bodies() const { return bodies_; }

private:
    std::int16_t leaf_number_;
    std::vector<std::unique_ptr<ICollisionElement>> elements_;
    std::vector<std::unique_ptr<details::CollisionBody>> bodies_;
    std::unique_ptr<ICollisionConfiguration> configuration_;
    std::unique_ptr<IProximityConfiguration> clearances_;
};

}  // namespace tarn::test
