#pragma once

#include "core/triangle.h"

#include "tarn/collision_element.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::details {

/// A named mesh: the valid ones of the triangles that it was made from, in their order.
class CollisionElement final : public ICollisionElement {
public:
    CollisionElement(std::string name, const std::vector<TriangleData>& triangles);
    CollisionElement(std::string name, const std::vector<const Triangle*>& triangles);

    bool GetFlag() const override { return false; }
    std::vector<TriangleData> GetTriangles() const override { return {triangles_.begin(), triangles_.end()}; }
    std::uint64_t GetTrianglesCount() const override { return triangles_.size(); }
    std::string GetName() const override { return name_; }

    const std::vector<Triangle>& Triangles() const { return triangles_; }

private:
    std::string name_;
    std::vector<Triangle> triangles_;
};

}  // namespace tarn::details
