#pragma once

#include "config/keyed_bodies.h"
#include "core/collision_body.h"
#include "core/indexed_table.h"

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
class KeyBodyPair final : public tarn::details::KeyedBodies<tarn::details::IBodyPair> {
public:
    KeyBodyPair(tarn::details::CollisionBody* first, tarn::details::CollisionBody* second)
        : KeyedBodies(first, second) {}
    KeyBodyPair(tarn::ICollisionBody* first, tarn::ICollisionBody* second) : KeyedBodies(first, second) {}
};

namespace tarn::details {

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
