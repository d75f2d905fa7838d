#include "core/collision_element.h"

#include <utility>

namespace tarn::details {

CollisionElement::CollisionElement(std::string name, const std::vector<TriangleData>& triangles)
    : name_(std::move(name)) {
    triangles_.reserve(triangles.size());
    for (const TriangleData& triangle : triangles) {
        if (IsValid(triangle)) triangles_.emplace_back(triangle);
    }
}

CollisionElement::CollisionElement(std::string name, const std::vector<const Triangle*>& triangles)
    : name_(std::move(name)) {
    triangles_.reserve(triangles.size());
    for (const Triangle* triangle : triangles) {
        if (IsValid(*triangle)) triangles_.push_back(*triangle);
    }
}

}  // namespace tarn::details
