#pragma once

#include "config/pair_key.h"
#include "core/collision_body.h"

#include "tarn/collision_body.h"
#include "tarn/exception.h"

#include <cstdint>

namespace tarn::details {

/// What the couples of both kinds of configuration store: the key and the two bodies, not owned, in the order
/// in which the couple was made. `Interface` has the accessors `First` and `Second`.
template <typename Interface>
class KeyedBodies : public Interface {
public:
    PairKey Key() const { return key_; }
    CollisionBody* First() const override { return first_; }
    CollisionBody* Second() const override { return second_; }

protected:
    KeyedBodies(CollisionBody* first, CollisionBody* second)
        : key_(MakePairKey(first->GetId(), second->GetId())),
          first_(first),
          second_(second) {}
    /// A body of a foreign class leaves a null pointer in its place; null itself throws
    /// `NullPointerException`.
    KeyedBodies(ICollisionBody* first, ICollisionBody* second)
        : key_(MakePairKey(IdOf(first), IdOf(second))),
          first_(dynamic_cast<CollisionBody*>(first)),
          second_(dynamic_cast<CollisionBody*>(second)) {}

private:
    static std::uint32_t IdOf(const ICollisionBody* body) {
        if (!body) throw NullPointerException();
        return body->GetId();
    }

    PairKey key_;
    CollisionBody* first_;
    CollisionBody* second_;
};

/// By which a configuration finds its couples.
struct KeyOfPair {
    template <typename Couple>
    PairKey operator()(const Couple& couple) const {
        return couple.Key();
    }
};

}  // namespace tarn::details
