#include "core/collision_body.h"

#include "core/collision_element.h"

#include "tarn/exception.h"

#include <cstring>
#include <stdexcept>
#include <thread>
#include <utility>

namespace tarn::details {

namespace {

/// The statistics' storage estimate per triangle, in bytes. A fixed figure of the interface, not a
/// measurement.
constexpr std::uint64_t kStorageEstimatePerTriangle = 80;

std::uint64_t KeyOf(const ICollisionElement* element) {
    return AddressKey()(element);
}

/// Whether two placements are the same to the bit: -0.0 differs from 0.0, and NaN equals itself.
bool SameBits(const MATRIX& a, const MATRIX& b) {
    return std::memcmp(a.m, b.m, sizeof(a.m)) == 0;
}

}  // namespace

std::uint64_t CollisionBody::ElementAddress::operator()(const CollisionElement* element) const {
    return KeyOf(element);
}

CollisionBody::CollisionBody(std::uint32_t id, std::uint64_t owner, std::string name)
    : id_(id),
      owner_(owner),
      name_(std::move(name)) {}

CollisionBody::CollisionBody(std::uint32_t id, std::string name) : CollisionBody(id, id, std::move(name)) {}

void CollisionBody::AddElement(ICollisionElement* element) {
    if (!element) throw NullPointerException();
    auto* own = dynamic_cast<CollisionElement*>(element);
    if (!own) {
        throw BadCastException(
            "Could not recognize ICollisionElement as its internal implementation class (CollisionElement)");
    }
    needs_rebuild_ = elements_.Insert(own);
}

void CollisionBody::RemoveElement(ICollisionElement* element) {
    if (!element) throw NullPointerException();
    needs_rebuild_ = elements_.EraseKeepingOrder(KeyOf(element));
}

bool CollisionBody::HasElement(ICollisionElement* element) const {
    if (!element) throw NullPointerException();
    return elements_.Contains(KeyOf(element));
}

void CollisionBody::SetMatrix(const MATRIX& matrix) {
    pending_ = matrix;
    placement_state_.store(PlacementState::Pending, std::memory_order_relaxed);
}

void CollisionBody::Update() {
    // Acquire: whoever sees the placement as current sees what applying it wrote.
    PlacementState state = placement_state_.load(std::memory_order_acquire);
    while (state != PlacementState::Current) {
        if (state == PlacementState::BeingApplied) {
            std::this_thread::yield();
            state = placement_state_.load(std::memory_order_acquire);
        } else if (placement_state_.compare_exchange_weak(state, PlacementState::BeingApplied,
                                                          std::memory_order_acquire,
                                                          std::memory_order_acquire)) {
            ApplyPlacement();
            // Release: publishes the current matrix and the staleness of the tree.
            placement_state_.store(PlacementState::Current, std::memory_order_release);
            return;
        }
    }
}

void CollisionBody::ApplyPlacement() noexcept {
    if (SameBits(pending_, current_)) return;
    current_ = pending_;
    if (hierarchy_) hierarchy_->MarkStale();
}

std::vector<ICollisionElement*> CollisionBody::GetElements() const {
    return {elements_.begin(), elements_.end()};
}

void CollisionBody::SetLeafNumber(std::int16_t leaf_number) {
    if (leaf_number < 1) throw std::invalid_argument("Leaf number can't be negative or zero");
    if (leaf_number == leaf_number_ && !needs_rebuild_) return;

    std::size_t triangle_count = 0;
    for (const CollisionElement* element : elements_) triangle_count += element->Triangles().size();
    std::vector<const Triangle*> triangles;
    triangles.reserve(triangle_count);
    for (const CollisionElement* element : elements_) {
        for (const Triangle& triangle : element->Triangles()) triangles.push_back(&triangle);
    }
    // A new tree starts stale, so a placement that is still pending is all that the next update has to see
    // to.
    hierarchy_ =
        std::make_unique<AABBHierarchy>(triangles, static_cast<std::uint16_t>(leaf_number), &current_);
    leaf_number_ = leaf_number;
    needs_rebuild_ = false;
}

CollisionBodyStatistics CollisionBody::GetStatistics() const {
    if (!hierarchy_) return {};
    const NodeStatistics root = hierarchy_->Root().Statistics();
    return {static_cast<std::uint64_t>(leaf_number_), root.total_triangles, root.depth,
            root.total_triangles * kStorageEstimatePerTriangle};
}

}  // namespace tarn::details
