#include "host/required.h"
#include "ostrel/quarrix/collision_couple.h"
#include "ostrel/quarrix/interference_couple.h"
#include "ostrel/quarrix/near_elements_couple.h"
#include "ostrel/quarrix/proximity_couple.h"

#include <utility>

namespace Ostrel::Quarrix::Collisions {

CollisionCouple::CollisionCouple(std::shared_ptr<ICollisionConfigurationElement> first,
                                 std::shared_ptr<ICollisionConfigurationElement> second,
                                 CheckCoupleConfiguration checkConfiguration,
                                 double tolerance)
    : tolerance_(tolerance),
      first_(std::move(first)),
      second_(std::move(second)),
      check_configuration_(checkConfiguration) {
    RequireNotNull(first_, "first");
    RequireNotNull(second_, "second");
}

std::shared_ptr<ICollisionConfigurationElement> CollisionCouple::get_Element1() const {
    RequireNotDisposed();
    return first_;
}

std::shared_ptr<ICollisionConfigurationElement> CollisionCouple::get_Element2() const {
    RequireNotDisposed();
    return second_;
}

CheckCoupleConfiguration CollisionCouple::get_CheckConfiguration() const {
    RequireNotDisposed();
    return check_configuration_;
}

double CollisionCouple::get_Clearance() const {
    RequireNotDisposed();
    return tolerance_;
}

ProximityCouple::ProximityCouple(std::shared_ptr<ICollisionConfigurationElement> first,
                                 std::shared_ptr<ICollisionConfigurationElement> second,
                                 std::shared_ptr<ProximitySetting> setting)
    : first_(std::move(first)),
      second_(std::move(second)),
      setting_(std::move(setting)) {
    RequireNotNull(first_, "first");
    RequireNotNull(second_, "second");
    RequireNotNull(setting_, "setting");
}

std::shared_ptr<ICollisionConfigurationElement> ProximityCouple::get_Element1() const {
    RequireNotDisposed();
    return first_;
}

std::shared_ptr<ICollisionConfigurationElement> ProximityCouple::get_Element2() const {
    RequireNotDisposed();
    return second_;
}

std::shared_ptr<ProximitySetting> ProximityCouple::get_Setting() const {
    RequireNotDisposed();
    return setting_->Clone();
}

InterferenceCouple::InterferenceCouple(std::shared_ptr<ICollisionConfigurationElement> element1,
                                       std::shared_ptr<ICollisionConfigurationElement> element2,
                                       double clearance)
    : InterferenceCouple(
          std::move(element1), std::move(element2), true, clearance, std::make_shared<DistanceSegment>()) {}

InterferenceCouple::InterferenceCouple(std::shared_ptr<ICollisionConfigurationElement> element1,
                                       std::shared_ptr<ICollisionConfigurationElement> element2,
                                       double clearance,
                                       std::shared_ptr<DistanceSegment> segment)
    : InterferenceCouple(std::move(element1), std::move(element2), false, clearance, std::move(segment)) {}

InterferenceCouple::InterferenceCouple(std::shared_ptr<ICollisionConfigurationElement> element1,
                                       std::shared_ptr<ICollisionConfigurationElement> element2,
                                       bool intersecting,
                                       double clearance,
                                       std::shared_ptr<DistanceSegment> segment)
    : first_(std::move(element1)),
      second_(std::move(element2)),
      distance_segment_(std::move(segment)),
      clearance_(clearance),
      intersecting_(intersecting) {}

std::shared_ptr<ICollisionConfigurationElement> InterferenceCouple::get_Element1() const {
    RequireNotDisposed();
    return first_;
}

std::shared_ptr<ICollisionConfigurationElement> InterferenceCouple::get_Element2() const {
    RequireNotDisposed();
    return second_;
}

std::shared_ptr<DistanceSegment> InterferenceCouple::get_DistanceSegment() const {
    RequireNotDisposed();
    return distance_segment_;
}

double InterferenceCouple::get_Clearance() const {
    RequireNotDisposed();
    return clearance_;
}

bool InterferenceCouple::get_Intersecting() const {
    RequireNotDisposed();
    return intersecting_;
}

NearElementsCouple::NearElementsCouple(std::shared_ptr<Collisions::CollisionCouple> collisionCouple,
                                       std::shared_ptr<Collisions::DistanceSegment> segment)
    : distance_segment_(std::move(segment)),
      collision_couple_(std::move(collisionCouple)) {}

std::shared_ptr<DistanceSegment> NearElementsCouple::get_DistanceSegment() const {
    RequireNotDisposed();
    return distance_segment_;
}

}  // namespace Ostrel::Quarrix::Collisions
