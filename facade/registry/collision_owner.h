#pragma once

#include "ostrel/quarrix/collision_element_owner.h"
#include "ostrel/quarrix/disposable.h"

#include <cstdint>
#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// The owner of one element that came back from a stored scene. The stored identifier is kept and not used:
/// the library knows owners by their hash codes.
class CollisionOwner final : public ICollisionElementOwner, public DisposableRecord {
public:
    explicit CollisionOwner(std::uint64_t id) : id_(id) {}

    std::shared_ptr<ICollisionElementOwner> get_Parent() const override { return nullptr; }

private:
    [[maybe_unused]] std::uint64_t id_;
};

}  // namespace Ostrel::Quarrix::Collisions
