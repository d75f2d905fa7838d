#include "tarn/factory.h"

#include "config/collision_configuration.h"
#include "config/proximity_configuration.h"
#include "core/collision_body.h"
#include "core/collision_element.h"

#include "tarn/exception.h"

namespace tarn {

using details::CollisionBody;
using details::CollisionElement;

ICollisionElement* make_element(const std::string& name, const std::vector<TriangleData>& triangles) {
    return make_unique_element(name, triangles).release();
}

ICollisionBody* make_body(std::uint32_t id, std::uint64_t owner, const std::string& name) {
    return make_unique_body(id, owner, name).release();
}

ICollisionBody* make_body(std::uint32_t id, const std::string& name) {
    return std::make_unique<CollisionBody>(id, name).release();
}

ICollisionConfiguration* make_configuration() {
    return make_unique_configuration().release();
}

IProximityConfiguration* make_proximity_configuration() {
    return make_unique_proximity_configuration().release();
}

std::unique_ptr<ICollisionElement> make_unique_element(const std::string& name,
                                                       const std::vector<TriangleData>& triangles) {
    return std::make_unique<CollisionElement>(name, triangles);
}

std::unique_ptr<ICollisionBody> make_unique_body(std::uint32_t id,
                                                 std::uint64_t owner,
                                                 const std::string& name) {
    return std::make_unique<CollisionBody>(id, owner, name);
}

std::unique_ptr<ICollisionConfiguration> make_unique_configuration() {
    return std::make_unique<CollisionConfiguration>();
}

std::unique_ptr<IProximityConfiguration> make_unique_proximity_configuration() {
    return std::make_unique<ProximityConfiguration>();
}

std::shared_ptr<ICollisionElement> make_shared_element(const std::string& name,
                                                       const std::vector<TriangleData>& triangles) {
    return std::make_shared<CollisionElement>(name, triangles);
}

std::shared_ptr<ICollisionBody> make_shared_body(std::uint32_t id,
                                                 std::uint64_t owner,
                                                 const std::string& name) {
    return std::make_shared<CollisionBody>(id, owner, name);
}

std::shared_ptr<ICollisionBody> make_shared_body(ICollisionElement* element,
                                                 std::uint32_t id,
                                                 std::uint64_t owner) {
    if (!element) throw NullPointerException();
    auto body = std::make_shared<CollisionBody>(id, owner, element->GetName());
    body->AddElement(element);
    return body;
}

std::shared_ptr<ICollisionConfiguration> make_shared_configuration() {
    return std::make_shared<CollisionConfiguration>();
}

std::shared_ptr<IProximityConfiguration> make_shared_proximity_configuration() {
    return std::make_shared<ProximityConfiguration>();
}

}  // namespace tarn
