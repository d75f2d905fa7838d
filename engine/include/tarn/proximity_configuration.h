#pragma once

#include "tarn/collision_body.h"
#include "tarn/export.h"
#include "tarn/proximity_result.h"
#include "tarn/proximity_setting.h"

#include <cstdint>
#include <vector>

namespace tarn {

/// Which bodies take part in clearance checks, which couples of them are measured, and the clearance of each
/// couple: the distance within which it is reported. Made by `make_proximity_configuration`.
///
/// Bodies, owners, couples, errors and thread-safety are those of `ICollisionConfiguration`. In place of a
/// flag there is a setting: with `enable`, couples are enabled with its clearance, also those that are
/// enabled already, whose bodies keep their order; without, they are disabled and the clearance is ignored.
/// Only `ConfigCouple` looks at the clearance; the others take over what they are given (a check counts a
/// negative one by its square).
class TARN_API IProximityConfiguration {
public:
    virtual ~IProximityConfiguration() = default;

    /// Adds a body and enables its couples with every body present. On a body already present: enables or
    /// disables its couples with every other body; it stays in either case.
    virtual void AddElement(ICollisionBody* body, const ProximitySetting& setting) = 0;
    /// Adds a body without any couple. A body already present is registered under its current owner again.
    virtual void AddElement(ICollisionBody* body) = 0;
    /// Removes a body. True when it was present. Its couples go with it, and so does every couple with an
    /// identifier that contains all set bits of the body's identifier (identifier 0 takes all couples along).
    virtual bool RemoveElement(ICollisionBody* body) = 0;
    /// Forgets bodies, owners and couples.
    virtual void RemoveAllElements() = 0;
    /// The owners seen so far, those without a body left included.
    virtual std::vector<std::uint64_t> RetrieveOwners() const = 0;
    /// Enables the couple, if both bodies are present, or disables it. A body given twice is coupled with
    /// itself. A negative clearance throws `InvalidArgumentException`, also when disabling and for bodies
    /// that are not present; -0 and NaN are not negative.
    virtual void ConfigCouple(ICollisionBody* body1,
                              ICollisionBody* body2,
                              const ProximitySetting& setting) = 0;
    /// Enables or disables the couples of one body with every other.
    virtual void ConfigElementAgainstAll(ICollisionBody* body, const ProximitySetting& setting) = 0;
    /// Enables or disables all couples.
    virtual void ConfigAllCouples(const ProximitySetting& setting) = 0;
    /// Enables or disables the couples between the bodies of one owner.
    virtual void ConfigIntraOwner(std::uint64_t owner, const ProximitySetting& setting) = 0;
    /// Enables or disables the couples of a body of `owner1` with a body of `owner2`. With one owner twice,
    /// each of its bodies is also coupled with itself.
    virtual void ConfigInterOwners(std::uint64_t owner1,
                                   std::uint64_t owner2,
                                   const ProximitySetting& setting) = 0;
    /// Whether the couple is enabled, and its clearance, 0 if it is not. The bodies need not be present.
    /// Throws `InvalidArgumentException` for a stored clearance that is negative.
    virtual ProximitySetting CoupleIsEnable(ICollisionBody* body1, ICollisionBody* body2) const = 0;
    /// The bodies, not owned.
    virtual std::vector<ICollisionBody*> RetrieveElements() const = 0;
    /// How many couples are enabled.
    virtual std::uint64_t RetrieveCouplesCount() const = 0;
    /// Replaces the content of `out` by the enabled couples and returns it.
    virtual std::vector<ProximityPair>& RetrieveCouples(std::vector<ProximityPair>& out) const = 0;
    /// Replaces the content of `out` by the enabled couples with the body's identifier and returns it.
    virtual std::vector<ProximityPair>& RetrieveCouples(std::vector<ProximityPair>& out,
                                                        ICollisionBody* body) const = 0;
    /// A new configuration with the same bodies, owners and couples. The caller owns it; the bodies are
    /// shared.
    [[nodiscard]] virtual IProximityConfiguration* Clone() const = 0;
    /// Takes over bodies, owners and couples of `other`; a couple that is here already keeps its clearance.
    /// Then enables or disables the couples between the bodies that are new here and those that were here
    /// before. `merge_policy` is ignored. A merge with itself does nothing. Throws `BadCastException` for a
    /// configuration of a foreign class.
    virtual void MergeConfiguration(IProximityConfiguration* other,
                                    const ProximitySetting& setting,
                                    int merge_policy) = 0;
    /// Takes over bodies, owners and couples of `other` and nothing else. Otherwise as `MergeConfiguration`.
    virtual void AppendDistinctConfiguration(IProximityConfiguration* other, int merge_policy) = 0;
    /// Makes the pending placements of all bodies current, in parallel. Every check calls it first.
    virtual void UpdateBodies() = 0;
};

}  // namespace tarn
