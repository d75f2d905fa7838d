#pragma once

#include "support/meshes.h"

#include "tarn/factory.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace tarn::test {

/// Bodies as a caller makes them, in a configuration of each kind, without couples.
struct Assembly {
    /// A body with an element for each mesh. It is built, unless `leaf_number` is 0.
    ICollisionBody* Add(std::uint32_t id,
                        std::uint64_t owner,
                        const std::string& name,
                        std::int16_t leaf_number,
                        const std::vector<Mesh>& meshes) {
        bodies.push_back(make_shared_body(id, owner, name));
        for (const Mesh& mesh : meshes) {
            elements.push_back(make_shared_element("element", mesh));
            bodies.back()->AddElement(elements.back().get());
        }
        if (leaf_number > 0) bodies.back()->SetLeafNumber(leaf_number);
        collisions->AddElement(bodies.back().get());
        clearances->AddElement(bodies.back().get());
        return bodies.back().get();
    }

    std::vector<std::shared_ptr<ICollisionElement>> elements;
    std::vector<std::shared_ptr<ICollisionBody>> bodies;
    std::shared_ptr<ICollisionConfiguration> collisions = make_shared_configuration();
    std::shared_ptr<IProximityConfiguration> clearances = make_shared_proximity_configuration();
};

inline std::string FileText(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace tarn::test
