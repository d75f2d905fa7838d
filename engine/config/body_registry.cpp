#include "config/body_registry.h"

#include <utility>

namespace tarn::details {

namespace {

void AddUnderOwner(OwnerTable& owners, std::uint64_t owner, CollisionBody* body) {
    if (OwnerGroup* group = owners.Find(owner)) {
        group->bodies.Insert(body);
        return;
    }
    OwnerGroup group{owner, {}};
    group.bodies.Insert(body);
    owners.Insert(std::move(group));
}

}  // namespace

CollisionBody* BodyRegistry::Find(const ICollisionBody* body) const {
    CollisionBody* const* found = bodies_.Find(BodyAddress()(body));
    return found ? *found : nullptr;
}

const BodySet* BodyRegistry::FindOwner(std::uint64_t owner) const {
    const OwnerGroup* group = owners_.Find(owner);
    return group ? &group->bodies : nullptr;
}

void BodyRegistry::Add(CollisionBody* body) {
    bodies_.ReserveMore(1);
    AddUnderOwner(owners_, body->GetOwner(), body);
    bodies_.Insert(body);
}

void BodyRegistry::Remove(CollisionBody* body) {
    const std::uint64_t key = BodyAddress()(body);
    for (std::size_t i = 0; i < owners_.size(); ++i) owners_.Find(owners_[i].owner)->bodies.Erase(key);
    bodies_.Erase(key);
}

void BodyRegistry::Append(const BodyRegistry& other) {
    bodies_.ReserveMore(other.bodies_.size());
    OwnerTable owners = owners_;
    for (const OwnerGroup& group : other.owners_) {
        if (!owners.Contains(group.owner)) owners.Insert({group.owner, {}});
        for (CollisionBody* body : group.bodies) AddUnderOwner(owners, group.owner, body);
    }
    owners_ = std::move(owners);
    for (CollisionBody* body : other.bodies_) bodies_.Insert(body);
}

void BodyRegistry::Clear() {
    bodies_.Clear();
    owners_.Clear();
}

}  // namespace tarn::details
