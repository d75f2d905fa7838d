#pragma once

#include "core/collision_body.h"
#include "core/collision_element.h"
#include "record/recorder.h"

#include "tarn/collision_configuration.h"
#include "tarn/proximity_configuration.h"
#include "tarn/triangle_data.h"

#include <tinyxml2.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

/// \file
/// The visitors that read a scene. Each walks the whole document below the root, takes the elements whose
/// names, in lower case, are its own, and lets all others pass. They report faults by throwing
/// `InconsistentDataException`, which names the element and its line.

namespace tarn::details {

/// Bodies by identifier; the first of those that share one.
using BodiesById = std::unordered_map<std::uint32_t, CollisionBody*>;

/// Checks the owners' identifiers. The owner of a body comes from its `element`, so nothing of them is kept.
class Recorder::XMLOwnersVisitor final : public tinyxml2::XMLVisitor {
public:
    bool VisitEnter(const tinyxml2::XMLElement& element, const tinyxml2::XMLAttribute* attributes) override;
};

/// Rebuilds the bodies with their meshes.
class Recorder::XMLElementsVisitor final : public tinyxml2::XMLVisitor {
public:
    bool VisitEnter(const tinyxml2::XMLElement& element, const tinyxml2::XMLAttribute* attributes) override;
    /// On leaving an `element` its body is made and built.
    bool VisitExit(const tinyxml2::XMLElement& element) override;

    const std::vector<std::unique_ptr<CollisionBody>>& Bodies() const { return bodies_; }
    const BodiesById& ById() const { return by_id_; }
    /// Leaves bodies and elements, which the bodies refer to, to the caller.
    void GiveAway() noexcept;

private:
    struct Attributes {
        std::uint64_t owner = 0;
        std::string name;
        std::uint32_t id = 0;
        std::int16_t leaves = 0;
    };

    static Attributes ReadAttributes(const tinyxml2::XMLElement& element);

    bool is_inside_element_ = false;
    Attributes attributes_;
    std::vector<TriangleData> triangles_;
    // In this order: bodies refer to elements.
    std::vector<std::unique_ptr<CollisionElement>> elements_;
    std::vector<std::unique_ptr<CollisionBody>> bodies_;
    BodiesById by_id_;
};

/// Enables the couples of a collision scene.
class Recorder::XMLPairsVisitor final : public tinyxml2::XMLVisitor {
public:
    XMLPairsVisitor(const BodiesById& bodies, ICollisionConfiguration& configuration)
        : bodies_(bodies),
          configuration_(configuration) {}
    bool VisitEnter(const tinyxml2::XMLElement& element, const tinyxml2::XMLAttribute* attributes) override;

private:
    const BodiesById& bodies_;
    ICollisionConfiguration& configuration_;
};

/// Enables the couples of a proximity scene with their clearances.
class Recorder::XMLProximityPairsVisitor final : public tinyxml2::XMLVisitor {
public:
    XMLProximityPairsVisitor(const BodiesById& bodies, IProximityConfiguration& configuration)
        : bodies_(bodies),
          configuration_(configuration) {}
    bool VisitEnter(const tinyxml2::XMLElement& element, const tinyxml2::XMLAttribute* attributes) override;

private:
    const BodiesById& bodies_;
    IProximityConfiguration& configuration_;
};

}  // namespace tarn::details
