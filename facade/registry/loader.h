#pragma once

#include "host/assume.h"
#include "ostrel/quarrix/collision_element.h"

#include "tarn/triangle_data.h"

#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// Appends the triangles that an element hands over to a list, which it does not own.
class Loader {
public:
    explicit Loader(std::vector<tarn::TriangleData>& triangles) : triangles_(&triangles) {}

    void operator()(const ICollisionElement::Vertex& v0,
                    const ICollisionElement::Vertex& v1,
                    const ICollisionElement::Vertex& v2) const {
        // Growing stands elsewhere, and the compiler is told that the list need not grow here: what is called
        // for every triangle is then a dozen moves.
        if (triangles_->size() == triangles_->capacity()) MakeRoom();
        QUARRIX_ASSUME(triangles_->size() != triangles_->capacity());
        triangles_->push_back({v0[0], v0[1], v0[2], v1[0], v1[1], v1[2], v2[0], v2[1], v2[2]});
    }

private:
    void MakeRoom() const;

    std::vector<tarn::TriangleData>* triangles_;
};

}  // namespace Ostrel::Quarrix::Collisions
