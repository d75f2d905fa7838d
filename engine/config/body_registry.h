#pragma once

#include "core/collision_body.h"
#include "core/indexed_table.h"

#include "tarn/collision_body.h"

#include <cstdint>

namespace tarn::details {

/// Bodies by the address of their interface.
struct BodyAddress {
    std::uint64_t operator()(const ICollisionBody* body) const { return AddressKey()(body); }
};
using BodySet = IndexedTable<CollisionBody*, BodyAddress>;

/// The bodies registered under one owner. It stays when its last body leaves.
struct OwnerGroup {
    std::uint64_t owner;
    BodySet bodies;
};
struct OwnerKey {
    std::uint64_t operator()(const OwnerGroup& group) const { return group.owner; }
};
using OwnerTable = IndexedTable<OwnerGroup, OwnerKey>;

/// The bodies of a configuration and their grouping by owner, both in the order of insertion. Nothing here is
/// owned. A call that throws changes nothing.
class BodyRegistry {
public:
    const BodySet& Bodies() const { return bodies_; }
    const OwnerTable& Owners() const { return owners_; }

    /// The body, or null when it is not registered.
    CollisionBody* Find(const ICollisionBody* body) const;
    /// The bodies of an owner, or null for an owner never seen.
    const BodySet* FindOwner(std::uint64_t owner) const;

    /// Registers a body, and that under its current owner, even if it stands under another one.
    void Add(CollisionBody* body);
    /// Forgets a body under every owner: it may have changed owners since it came.
    void Remove(CollisionBody* body);
    /// Adds the bodies and owner groups of another registry.
    void Append(const BodyRegistry& other);
    void Clear();

private:
    BodySet bodies_;
    OwnerTable owners_;
};

}  // namespace tarn::details
