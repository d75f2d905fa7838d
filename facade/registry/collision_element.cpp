#include "registry/collision_element.h"

#include <utility>

namespace Ostrel::Quarrix::Collisions {

CollisionElement::CollisionElement(Text name,
                                   std::uint32_t id,
                                   std::shared_ptr<ICollisionElementOwner> owner,
                                   std::vector<tarn::TriangleData> triangles)
    : id_(id),
      name_(name.View()),
      triangles_(std::move(triangles)),
      owner_(std::move(owner)) {}

std::array<double, 16> CollisionElement::get_Position() const {
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
}

void CollisionElement::Load(const TriangleCallback& callback) const {
    Vertex v0{};
    Vertex v1{};
    Vertex v2{};
    for (const tarn::TriangleData& triangle : triangles_) {
        v0 = {triangle.v0x, triangle.v0y, triangle.v0z};
        v1 = {triangle.v1x, triangle.v1y, triangle.v1z};
        v2 = {triangle.v2x, triangle.v2y, triangle.v2z};
        callback(v0, v1, v2);
    }
}

}  // namespace Ostrel::Quarrix::Collisions
