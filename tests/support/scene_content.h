#pragma once

#include "tarn/collision_configuration.h"
#include "tarn/proximity_configuration.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::test {

/// What a scene file carries of a body. Of all doubles the bits, so that -0.0 and NaN count.
struct BodyContent {
    std::uint32_t id;
    std::uint64_t owner;
    std::string name;
    std::uint64_t leaf_number;
    std::vector<std::array<std::uint64_t, 9>> triangles;  ///< of the hierarchy, sorted

    bool operator==(const BodyContent&) const = default;
};

struct CoupleContent {
    std::uint32_t first;
    std::uint32_t second;
    std::uint64_t clearance;

    bool operator==(const CoupleContent&) const = default;
};

/// What a scene file carries of a configuration.
struct SceneContent {
    std::vector<BodyContent> bodies;
    std::vector<CoupleContent> couples;

    bool operator==(const SceneContent&) const = default;
};

SceneContent ContentOf(const ICollisionConfiguration& configuration);
SceneContent ContentOf(const IProximityConfiguration& configuration);

}  // namespace tarn::test
