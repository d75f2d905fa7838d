#pragma once

#include "ostrel/quarrix/collision_element.h"
#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/text.h"

#include "tarn/triangle_data.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// An element that came back from a stored scene: it stands where it was stored, and never changes.
class CollisionElement final : public ICollisionElement, public IDisposable {
public:
    CollisionElement(Text name,
                     std::uint32_t id,
                     std::shared_ptr<ICollisionElementOwner> owner,
                     std::vector<tarn::TriangleData> triangles);

    std::string get_Name() const override { return name_; }
    std::shared_ptr<ICollisionElementOwner> get_Owner() const override { return owner_; }
    /// The identity, like the position from the base.
    std::array<double, 16> get_Position() const override;
    std::array<double, 16> get_PositionFromBase() const override { return get_Position(); }
    Event& get_PositionChanged() override { return position_changed_; }
    Event& get_CollisionElementChanged() override { return collision_element_changed_; }
    Event& get_FromBasePositionChanged() override { return from_base_position_changed_; }

    /// Hands over the same three arrays with every triangle, deliberately.
    void Load(const TriangleCallback& callback) const override;

    /// Frees the triangles.
    void Dispose() override { triangles_ = {}; }

private:
    Event position_changed_;
    Event collision_element_changed_;
    Event from_base_position_changed_;
    [[maybe_unused]] std::uint32_t id_;
    std::string name_;
    std::vector<tarn::TriangleData> triangles_;
    std::shared_ptr<ICollisionElementOwner> owner_;
};

}  // namespace Ostrel::Quarrix::Collisions
