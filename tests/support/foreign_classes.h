#pragma once

#include "tarn/collision_body.h"
#include "tarn/collision_configuration.h"
#include "tarn/collision_element.h"
#include "tarn/proximity_configuration.h"

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace tarn::test {

/// Implementations that are not the library's own, as a caller could write them.
class ForeignElement final : public ICollisionElement {
public:
    bool GetFlag() const override { return false; }
    std::vector<TriangleData> GetTriangles() const override { return {}; }
    std::uint64_t GetTrianglesCount() const override { return 0; }
    std::string GetName() const override { return "foreign"; }
};

class ForeignBody final : public ICollisionBody {
public:
    explicit ForeignBody(std::uint32_t id) : id_(id) {}

    std::uint32_t GetId() const override { return id_; }
    std::uint64_t GetOwner() const override { return 0; }
    void SetOwner(std::uint64_t) override {}
    std::string GetName() const override { return "foreign"; }
    void AddElement(ICollisionElement*) override {}
    void RemoveElement(ICollisionElement*) override {}
    bool HasElement(ICollisionElement*) const override { return false; }
    void SetMatrix(const MATRIX&) override {}
    void Update() override {}
    std::vector<ICollisionElement*> GetElements() const override { return {}; }
    void SetLeafNumber(std::int16_t) override {}
    CollisionBodyStatistics GetStatistics() const override { return {}; }

private:
    std::uint32_t id_;
};

template <typename Interface, typename Setting, typename Pair>
class ForeignConfigurationOf : public Interface {
public:
    int updates = 0;

    void AddElement(ICollisionBody*, Setting) override {}
    void AddElement(ICollisionBody*) override {}
    bool RemoveElement(ICollisionBody*) override { return false; }
    void RemoveAllElements() override {}
    std::vector<std::uint64_t> RetrieveOwners() const override { return {}; }
    void ConfigCouple(ICollisionBody*, ICollisionBody*, Setting) override {}
    void ConfigElementAgainstAll(ICollisionBody*, Setting) override {}
    void ConfigAllCouples(Setting) override {}
    void ConfigIntraOwner(std::uint64_t, Setting) override {}
    void ConfigInterOwners(std::uint64_t, std::uint64_t, Setting) override {}
    std::remove_cvref_t<Setting> CoupleIsEnable(ICollisionBody*, ICollisionBody*) const override {
        return {};
    }
    std::vector<ICollisionBody*> RetrieveElements() const override { return {}; }
    std::uint64_t RetrieveCouplesCount() const override { return 0; }
    std::vector<Pair>& RetrieveCouples(std::vector<Pair>& out) const override { return out; }
    std::vector<Pair>& RetrieveCouples(std::vector<Pair>& out, ICollisionBody*) const override { return out; }
    [[nodiscard]] Interface* Clone() const override { return nullptr; }
    void MergeConfiguration(Interface*, Setting, int) override {}
    void AppendDistinctConfiguration(Interface*, int) override {}
    void UpdateBodies() override { ++updates; }
};

class ForeignConfiguration final
    : public ForeignConfigurationOf<ICollisionConfiguration, bool, CollisionPair> {
public:
    void EnableAllCouples() override {}
};

using ForeignProximityConfiguration =
    ForeignConfigurationOf<IProximityConfiguration, const ProximitySetting&, ProximityPair>;

}  // namespace tarn::test
