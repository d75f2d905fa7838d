#pragma once

#include "config/body_pair.h"
#include "config/body_registry.h"
#include "config/proximity_body_pair.h"

#include "tarn/collision_configuration.h"
#include "tarn/proximity_configuration.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class CollisionConfiguration;
class ProximityConfiguration;

namespace tarn::details {

/// What is particular to interference checks: a couple is enabled or not.
struct CollisionKind {
    using Interface = ICollisionConfiguration;
    using Provider = IPairsProvider;
    using Configuration = CollisionConfiguration;
    using Couple = KeyBodyPair;
    using Record = CollisionPair;
    using Setting = bool;

    static constexpr const char* kForeignConfiguration =
        "Could not recognize ICollisionConfiguration as its internal implementation class "
        "(CollisionConfiguration)";

    static bool Enables(bool setting) { return setting; }
    static Couple MakeCouple(CollisionBody* first, CollisionBody* second, bool /*setting*/) {
        return {first, second};
    }
    static void Overwrite(Couple& /*present*/, const Couple& /*couple*/) {}
    static Record RecordOf(const Couple& couple) { return {couple.First(), couple.Second()}; }
};

/// What is particular to clearance checks: an enabled couple has a clearance.
struct ProximityKind {
    using Interface = IProximityConfiguration;
    using Provider = IProximityPairsProvider;
    using Configuration = ProximityConfiguration;
    using Couple = ProximityKeyBodyPair;
    using Record = ProximityPair;
    using Setting = const ProximitySetting&;

    static constexpr const char* kForeignConfiguration =
        "Could not recognize IProximityConfiguration as its internal implementation class "
        "(ProximityConfiguration)";

    static bool Enables(const ProximitySetting& setting) { return setting.enable; }
    static Couple MakeCouple(CollisionBody* first, CollisionBody* second, const ProximitySetting& setting) {
        return {first, second, setting.clearance};
    }
    /// A couple enabled again takes the new clearance; its bodies keep their order.
    static void Overwrite(Couple& present, const Couple& couple) { present.SetClearance(couple.Clearance()); }
    static Record RecordOf(const Couple& couple) {
        return {couple.First(), couple.Second(), couple.Clearance()};
    }
};

/// The operations that the configurations of both kinds have in common, so that each rule stands once. What
/// callers may expect stands with the interfaces.
template <typename Kind>
class BasicConfiguration : public Kind::Interface, public Kind::Provider {
public:
    using Couple = typename Kind::Couple;
    using Record = typename Kind::Record;
    using Setting = typename Kind::Setting;
    using Interface = typename Kind::Interface;
    using Couples = IndexedTable<Couple, KeyOfPair>;

    void AddElement(ICollisionBody* body, Setting setting) override;
    void AddElement(ICollisionBody* body) override;
    bool RemoveElement(ICollisionBody* body) override;
    void RemoveAllElements() override;
    std::vector<std::uint64_t> RetrieveOwners() const override;
    void ConfigCouple(ICollisionBody* body1, ICollisionBody* body2, Setting setting) override;
    void ConfigElementAgainstAll(ICollisionBody* body, Setting setting) override;
    void ConfigAllCouples(Setting setting) override;
    void ConfigIntraOwner(std::uint64_t owner, Setting setting) override;
    void ConfigInterOwners(std::uint64_t owner1, std::uint64_t owner2, Setting setting) override;
    std::vector<ICollisionBody*> RetrieveElements() const override;
    std::uint64_t RetrieveCouplesCount() const override { return couples_.size(); }
    std::vector<Record>& RetrieveCouples(std::vector<Record>& out) const override;
    std::vector<Record>& RetrieveCouples(std::vector<Record>& out, ICollisionBody* body) const override;
    [[nodiscard]] Interface* Clone() const override;
    void MergeConfiguration(Interface* other, Setting setting, int merge_policy) override;
    void AppendDistinctConfiguration(Interface* other, int merge_policy) override;
    void UpdateBodies() override;

    const Couples& Pairs() const override { return couples_; }

    /// Checks for tests that the bodies of every couple and owner are present, couples under the keys that
    /// name them.
    bool IsConsistent() const;

protected:
    /// Replaces the couples by all couples of two different bodies.
    void ReplaceByAllCouples(Setting setting);
    /// The couple of two bodies, or null. Throws `NullPointerException` for a null body.
    const Couple* FindCouple(const ICollisionBody* body1, const ICollisionBody* body2) const;

private:
    void SetCouple(CollisionBody* first, CollisionBody* second, Setting setting);
    /// Enables or disables all couples that `for_each` hands to its visitor, at most `most`. `for_each` may
    /// be called twice. If it throws, nothing has changed.
    template <typename ForEach>
    void SetCouples(Setting setting, std::size_t most, ForEach for_each);
    void Append(const BasicConfiguration& other);

    BodyRegistry registry_;
    Couples couples_;
};

}  // namespace tarn::details
