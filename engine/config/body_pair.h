#pragma once

#include "config/pair_key.h"
#include "core/collision_body.h"
#include "core/indexed_table.h"

#include "tarn/collision_body.h"
#include "tarn/exception.h"

#include <cstdint>

namespace tarn::details {

/// A couple to be checked. The bodies stand in the order in which the couple was made and are not owned.
class IBodyPair {
public:
    virtual ~IBodyPair() = default;
    virtual CollisionBody* First() const = 0;
    virtual CollisionBody* Second() const = 0;

protected:
    IBodyPair() = default;
    IBodyPair(const IBodyPair&) = default;
    IBodyPair& operator=(const IBodyPair&) = default;
};

}  // namespace tarn::details

/// A couple with its key, as configurations store it.
class KeyBodyPair final : public tarn::details::IBodyPair {
public:
    KeyBodyPair(tarn::details::CollisionBody* first, tarn::details::CollisionBody* second)
        : key_(tarn::details::MakePairKey(first->GetId(), second->GetId())),
          first_(first),
          second_(second) {}
    /// A body of a foreign class leaves a null pointer in its place; null itself throws
    /// `NullPointerException`.
    KeyBodyPair(tarn::ICollisionBody* first, tarn::ICollisionBody* second)
        : key_(tarn::details::MakePairKey(IdOf(first), IdOf(second))),
          first_(dynamic_cast<tarn::details::CollisionBody*>(first)),
          second_(dynamic_cast<tarn::details::CollisionBody*>(second)) {}

    tarn::details::PairKey Key() const { return key_; }
    tarn::details::CollisionBody* First() const override { return first_; }
    tarn::details::CollisionBody* Second() const override { return second_; }

private:
    static std::uint32_t IdOf(const tarn::ICollisionBody* body) {
        if (!body) throw tarn::NullPointerException();
        return body->GetId();
    }

    tarn::details::PairKey key_;
    tarn::details::CollisionBody* first_;
    tarn::details::CollisionBody* second_;
};

namespace tarn::details {

struct KeyOfPair {
    std::uint64_t operator()(const KeyBodyPair& pair) const { return pair.Key(); }
};

/// The enabled couples of a configuration, one entry per key.
using CoupleTable = IndexedTable<KeyBodyPair, KeyOfPair>;

/// What a detector asks of a configuration.
class IPairsProvider {
public:
    virtual ~IPairsProvider() = default;
    /// The enabled couples. Valid as long as the configuration lives and is not changed.
    virtual const CoupleTable& Pairs() const = 0;
};

}  // namespace tarn::details
