#pragma once

#include "core/aabb_hierarchy.h"
#include "core/indexed_table.h"

#include "tarn/collision_body.h"
#include "tarn/collision_element.h"
#include "tarn/matrix.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tarn::details {

class CollisionElement;

/// The library's only body. What callers may expect stands with the interface.
class CollisionBody final : public ICollisionBody {
public:
    CollisionBody(std::uint32_t id, std::uint64_t owner, std::string name);
    /// The identifier is the owner, too.
    CollisionBody(std::uint32_t id, std::string name);
    CollisionBody(const CollisionBody&) = delete;
    CollisionBody& operator=(const CollisionBody&) = delete;

    std::uint32_t GetId() const override { return id_; }
    std::uint64_t GetOwner() const override { return owner_; }
    void SetOwner(std::uint64_t owner) override { owner_ = owner; }
    std::string GetName() const override { return name_; }
    void AddElement(ICollisionElement* element) override;
    void RemoveElement(ICollisionElement* element) override;
    bool HasElement(ICollisionElement* element) const override;
    void SetMatrix(const MATRIX& matrix) override;
    void Update() override;
    std::vector<ICollisionElement*> GetElements() const override;
    void SetLeafNumber(std::int16_t leaf_number) override;
    CollisionBodyStatistics GetStatistics() const override;

    /// Builds the hierarchy with the leaf number that is set, if the elements ask for it.
    void Rebuild() { SetLeafNumber(leaf_number_); }
    /// The hierarchy, or null before the first build. Owned by the body.
    const AABBHierarchy* Hierarchy() const { return hierarchy_.get(); }
    /// The placement that the hierarchy's world data follow.
    const MATRIX& CurrentMatrix() const { return current_; }

private:
    enum class PlacementState : std::uint8_t { Current, Pending, BeingApplied };

    struct ElementAddress {
        std::uint64_t operator()(const CollisionElement* element) const;
    };

    /// Makes the pending placement the current one. On the claiming thread only.
    void ApplyPlacement() noexcept;

    std::uint32_t id_;
    std::uint64_t owner_;
    std::string name_;
    IndexedTable<CollisionElement*, ElementAddress> elements_;
    std::int16_t leaf_number_ = 1;
    /// What the last change of the elements said, whatever the changes before it said.
    bool needs_rebuild_ = true;
    MATRIX current_;
    MATRIX pending_;
    std::atomic<PlacementState> placement_state_{PlacementState::Pending};
    std::unique_ptr<AABBHierarchy> hierarchy_;
};

}  // namespace tarn::details
