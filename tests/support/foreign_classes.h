#pragma once

#include "tarn/collision_body.h"
#include "tarn/collision_configuration.h"
#include "tarn/collision_element.h"

#include <cstdint>
#include <string>
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

class ForeignConfiguration final : public ICollisionConfiguration {
public:
    int updates = 0;

    void AddElement(ICollisionBody*, bool) override {}
    void AddElement(ICollisionBody*) override {}
    bool RemoveElement(ICollisionBody*) override { return false; }
    void RemoveAllElements() override {}
    void EnableAllCouples() override {}
    std::vector<std::uint64_t> RetrieveOwners() const override { return {}; }
    void ConfigCouple(ICollisionBody*, ICollisionBody*, bool) override {}
    void ConfigElementAgainstAll(ICollisionBody*, bool) override {}
    void ConfigAllCouples(bool) override {}
    void ConfigIntraOwner(std::uint64_t, bool) override {}
    void ConfigInterOwners(std::uint64_t, std::uint64_t, bool) override {}
    bool CoupleIsEnable(ICollisionBody*, ICollisionBody*) const override { return false; }
    std::vector<ICollisionBody*> RetrieveElements() const override { return {}; }
    std::uint64_t RetrieveCouplesCount() const override { return 0; }
    std::vector<CollisionPair>& RetrieveCouples(std::vector<CollisionPair>& out) const override {
        return out;
    }
    std::vector<CollisionPair>& RetrieveCouples(std::vector<CollisionPair>& out,
                                                ICollisionBody*) const override {
        return out;
    }
    [[nodiscard]] ICollisionConfiguration* Clone() const override { return new ForeignConfiguration(); }
    void MergeConfiguration(ICollisionConfiguration*, bool, int) override {}
    void AppendDistinctConfiguration(ICollisionConfiguration*, int) override {}
    void UpdateBodies() override { ++updates; }
};

}  // namespace tarn::test
