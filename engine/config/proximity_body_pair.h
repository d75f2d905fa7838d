#pragma once

#include "config/keyed_bodies.h"
#include "core/collision_body.h"
#include "core/indexed_table.h"

namespace tarn::details {

/// A couple to be measured. The bodies stand in the order in which the couple was made and are not owned.
class IProximityBodyPair {
public:
    virtual ~IProximityBodyPair() = default;
    virtual CollisionBody* First() const = 0;
    virtual CollisionBody* Second() const = 0;
    /// The distance within which the couple is reported.
    virtual double Clearance() const = 0;

protected:
    IProximityBodyPair() = default;
    IProximityBodyPair(const IProximityBodyPair&) = default;
    IProximityBodyPair& operator=(const IProximityBodyPair&) = default;
};

}  // namespace tarn::details

/// A couple with its key and its clearance, as configurations store it.
class ProximityKeyBodyPair final : public tarn::details::KeyedBodies<tarn::details::IProximityBodyPair> {
public:
    ProximityKeyBodyPair(tarn::details::CollisionBody* first,
                         tarn::details::CollisionBody* second,
                         double clearance)
        : KeyedBodies(first, second),
          clearance_(clearance) {}
    ProximityKeyBodyPair(tarn::ICollisionBody* first, tarn::ICollisionBody* second, double clearance)
        : KeyedBodies(first, second),
          clearance_(clearance) {}

    double Clearance() const override { return clearance_; }
    void SetClearance(double clearance) { clearance_ = clearance; }

private:
    double clearance_;
};

namespace tarn::details {

/// The enabled couples of a proximity configuration, one entry per key.
using ProximityCoupleTable = IndexedTable<ProximityKeyBodyPair, KeyOfPair>;

/// What a proximity detector asks of a configuration.
class IProximityPairsProvider {
public:
    virtual ~IProximityPairsProvider() = default;
    /// The enabled couples. Valid as long as the configuration lives and is not changed.
    virtual const ProximityCoupleTable& Pairs() const = 0;
};

}  // namespace tarn::details
