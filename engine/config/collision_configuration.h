#pragma once

#include "config/body_pair.h"
#include "config/body_registry.h"

#include "tarn/collision_configuration.h"

#include <cstdint>
#include <vector>

/// The library's only configuration. What callers may expect stands with the interface.
class CollisionConfiguration final : public tarn::ICollisionConfiguration,
                                     public tarn::details::IPairsProvider {
public:
    void AddElement(tarn::ICollisionBody* body, bool enable) override;
    void AddElement(tarn::ICollisionBody* body) override;
    bool RemoveElement(tarn::ICollisionBody* body) override;
    void RemoveAllElements() override;
    void EnableAllCouples() override;
    std::vector<std::uint64_t> RetrieveOwners() const override;
    void ConfigCouple(tarn::ICollisionBody* body1, tarn::ICollisionBody* body2, bool enable) override;
    void ConfigElementAgainstAll(tarn::ICollisionBody* body, bool enable) override;
    void ConfigAllCouples(bool enable) override;
    void ConfigIntraOwner(std::uint64_t owner, bool enable) override;
    void ConfigInterOwners(std::uint64_t owner1, std::uint64_t owner2, bool enable) override;
    bool CoupleIsEnable(tarn::ICollisionBody* body1, tarn::ICollisionBody* body2) const override;
    std::vector<tarn::ICollisionBody*> RetrieveElements() const override;
    std::uint64_t RetrieveCouplesCount() const override { return couples_.size(); }
    std::vector<tarn::CollisionPair>& RetrieveCouples(std::vector<tarn::CollisionPair>& out) const override;
    std::vector<tarn::CollisionPair>& RetrieveCouples(std::vector<tarn::CollisionPair>& out,
                                                      tarn::ICollisionBody* body) const override;
    [[nodiscard]] tarn::ICollisionConfiguration* Clone() const override;
    void MergeConfiguration(tarn::ICollisionConfiguration* other, bool enable, int merge_policy) override;
    void AppendDistinctConfiguration(tarn::ICollisionConfiguration* other, int merge_policy) override;
    void UpdateBodies() override;

    const tarn::details::CoupleTable& Pairs() const override { return couples_; }

    /// Checks for tests that the bodies of every couple and owner are present, couples under the keys that
    /// name them.
    bool IsConsistent() const;

private:
    void SetCouple(tarn::details::CollisionBody* first, tarn::details::CollisionBody* second, bool enable);
    /// Enables or disables all couples that `for_each` hands to its visitor, at most `most`. `for_each` may
    /// be called twice. If it throws, nothing has changed.
    template <typename ForEach>
    void SetCouples(bool enable, std::size_t most, ForEach for_each);
    void Append(const CollisionConfiguration& other);

    tarn::details::BodyRegistry registry_;
    tarn::details::CoupleTable couples_;
};
