#pragma once

#include "tarn/collision_body.h"
#include "tarn/collision_result.h"
#include "tarn/export.h"

#include <cstdint>
#include <vector>

namespace tarn {

/// Which bodies take part in interference checks, and which couples of them are checked. Made by
/// `make_configuration`. A configuration never owns its bodies: each must outlive its stay.
///
/// A couple is known by the two identifiers alone, whichever comes first, so two bodies that share an
/// identifier are the same couple to a configuration. Bodies, owners and couples are listed in the order in
/// which they came in; a removal may change that order, in the same way every time.
///
/// Errors: a null body or configuration throws `NullPointerException`; adding a body of a foreign class
/// throws `BadCastException`; both before any change. Operations on bodies or owners that the configuration
/// does not hold do nothing. More than 2^32 - 2 couples throw `std::length_error`. A call that throws leaves
/// the configuration as it was.
///
/// Thread-safety: calls that change the configuration run alone. Checks, `UpdateBodies` and the calls that
/// only read may run beside each other.
class TARN_API ICollisionConfiguration {
public:
    virtual ~ICollisionConfiguration() = default;

    /// Adds a body; with `enable`, couples it with every body present. On a body already present: with
    /// `enable`, couples it with every other body; without, removes all its couples; it stays in either case.
    virtual void AddElement(ICollisionBody* body, bool enable) = 0;
    /// Adds a body without any couple. A body already present is registered under its current owner again.
    virtual void AddElement(ICollisionBody* body) = 0;
    /// Removes a body. True when it was present. Its couples go with it, and so does every couple with an
    /// identifier that contains all set bits of the body's identifier (identifier 0 takes all couples along).
    virtual bool RemoveElement(ICollisionBody* body) = 0;
    /// Forgets bodies, owners and couples.
    virtual void RemoveAllElements() = 0;
    /// Replaces the couples by all couples of two different bodies.
    virtual void EnableAllCouples() = 0;
    /// The owners seen so far, those without a body left included.
    virtual std::vector<std::uint64_t> RetrieveOwners() const = 0;
    /// Enables the couple, if both bodies are present, or disables it. A body given twice is coupled with
    /// itself.
    virtual void ConfigCouple(ICollisionBody* body1, ICollisionBody* body2, bool enable) = 0;
    /// Enables or disables the couples of one body with every other.
    virtual void ConfigElementAgainstAll(ICollisionBody* body, bool enable) = 0;
    /// Enables all couples beside those enabled already, or disables all.
    virtual void ConfigAllCouples(bool enable) = 0;
    /// Enables or disables the couples between the bodies of one owner.
    virtual void ConfigIntraOwner(std::uint64_t owner, bool enable) = 0;
    /// Enables or disables the couples of a body of `owner1` with a body of `owner2`. With one owner twice,
    /// each of its bodies is also coupled with itself.
    virtual void ConfigInterOwners(std::uint64_t owner1, std::uint64_t owner2, bool enable) = 0;
    /// Whether the couple is enabled. The bodies need not be present.
    virtual bool CoupleIsEnable(ICollisionBody* body1, ICollisionBody* body2) const = 0;
    /// The bodies, not owned.
    virtual std::vector<ICollisionBody*> RetrieveElements() const = 0;
    /// How many couples are enabled.
    virtual std::uint64_t RetrieveCouplesCount() const = 0;
    /// Replaces the content of `out` by the enabled couples and returns it.
    virtual std::vector<CollisionPair>& RetrieveCouples(std::vector<CollisionPair>& out) const = 0;
    /// Replaces the content of `out` by the enabled couples with the body's identifier and returns it.
    virtual std::vector<CollisionPair>& RetrieveCouples(std::vector<CollisionPair>& out,
                                                        ICollisionBody* body) const = 0;
    /// A new configuration with the same bodies, owners and couples. The caller owns it; the bodies are
    /// shared.
    [[nodiscard]] virtual ICollisionConfiguration* Clone() const = 0;
    /// Takes over bodies, owners and couples of `other`, then enables or disables the couples between the
    /// bodies that are new here and those that were here before. `merge_policy` is ignored. A merge with
    /// itself does nothing. Throws `BadCastException` for a configuration of a foreign class.
    virtual void MergeConfiguration(ICollisionConfiguration* other, bool enable, int merge_policy) = 0;
    /// Takes over bodies, owners and couples of `other` and nothing else. Otherwise as `MergeConfiguration`.
    virtual void AppendDistinctConfiguration(ICollisionConfiguration* other, int merge_policy) = 0;
    /// Makes the pending placements of all bodies current, in parallel. Every check calls it first.
    virtual void UpdateBodies() = 0;
};

}  // namespace tarn
