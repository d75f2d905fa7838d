#include "support/scene.h"

#include "tarn/factory.h"

#include <string>

namespace tarn::test {

Scene::Scene(std::int16_t leaf_number)
    : leaf_number_(leaf_number),
      configuration_(make_unique_configuration()),
      clearances_(make_unique_proximity_configuration()) {}

ICollisionElement* Scene::AddElement(const Mesh& mesh) {
    elements_.push_back(make_unique_element("element " + std::to_string(elements_.size() + 1), mesh));
    return elements_.back().get();
}

details::CollisionBody* Scene::Add(std::uint32_t id,
                                   std::uint64_t owner,
                                   const std::string& name,
                                   std::int16_t leaf_number,
                                   const std::vector<ICollisionElement*>& elements,
                                   const MATRIX& placement) {
    bodies_.push_back(std::make_unique<details::CollisionBody>(id, owner, name));
    details::CollisionBody* body = bodies_.back().get();
    for (ICollisionElement* element : elements) body->AddElement(element);
    body->SetMatrix(placement);
    if (leaf_number > 0) body->SetLeafNumber(leaf_number);
    configuration_->AddElement(body);
    clearances_->AddElement(body);
    return body;
}

details::CollisionBody* Scene::AddBody(ICollisionElement* element,
                                       const MATRIX& placement,
                                       std::uint64_t owner) {
    const auto id = static_cast<std::uint32_t>(bodies_.size() + 1);
    return Add(id, owner, "body " + std::to_string(id), leaf_number_, {element}, placement);
}

details::CollisionBody* Scene::AddBody(const Mesh& mesh, const MATRIX& placement, std::uint64_t owner) {
    return AddBody(AddElement(mesh), placement, owner);
}

}  // namespace tarn::test
