#include "ostrel/quarrix/collision_configuration.h"

#include "configuration/native_collision_configuration_wrapper.h"
#include "ostrel/quarrix/exceptions.h"

#include <utility>

namespace Ostrel::Quarrix::Collisions {

namespace {

/// Null is of no class.
const CollisionConfiguration& RequireOwnClass(const std::shared_ptr<ICollisionConfiguration>& configuration) {
    const auto* own = dynamic_cast<const CollisionConfiguration*>(configuration.get());
    if (!own) throw InvalidCastException("Can't cast 'configuration' parameter to internal class.");
    return *own;
}

}  // namespace

CollisionConfiguration::CollisionConfiguration()
    : native_(std::make_shared<NativeCollisionConfigurationWrapper>()) {}

CollisionConfiguration::CollisionConfiguration(std::shared_ptr<NativeCollisionConfigurationWrapper> native)
    : native_(std::move(native)) {}

CollisionConfiguration::~CollisionConfiguration() {
    CollisionConfiguration::Dispose();
}

void CollisionConfiguration::Dispose() {
    if (std::exchange(disposed_, true)) return;
    native_->Dispose();
}

std::shared_ptr<NativeCollisionConfigurationWrapper> CollisionConfiguration::Native() const {
    if (disposed_) throw ObjectDisposedException("");
    return native_;
}

void CollisionConfiguration::AddElement(const Element& element,
                                        CheckCoupleConfiguration checkConfiguration,
                                        double tolerance) {
    Native()->AddElement(element, checkConfiguration, tolerance);
}

void CollisionConfiguration::AddElements(Sequence<Element> elements,
                                         CheckCoupleConfiguration checkConfiguration,
                                         double tolerance) {
    Native()->AddElements(elements, checkConfiguration, tolerance);
}

void CollisionConfiguration::RemoveElement(const Element& element) {
    Native()->RemoveElement(element);
}

void CollisionConfiguration::RemoveAllElements() {
    Native()->RemoveAllElements();
}

void CollisionConfiguration::MergeConfiguration(const std::shared_ptr<ICollisionConfiguration>& configuration,
                                                CheckCoupleConfiguration checkConfiguration,
                                                double tolerance) {
    const auto native = Native();
    native->MergeConfiguration(RequireOwnClass(configuration).native_, checkConfiguration, tolerance);
}

void CollisionConfiguration::AppendDistinctConfiguration(
    const std::shared_ptr<ICollisionConfiguration>& configuration) {
    const auto native = Native();
    native->AppendDistinctConfiguration(RequireOwnClass(configuration).native_);
}

void CollisionConfiguration::Swap(const std::shared_ptr<ICollisionConfiguration>& configuration) {
    const auto native = Native();
    native->Swap(RequireOwnClass(configuration).native_);
}

std::shared_ptr<ICollisionConfiguration> CollisionConfiguration::Clone() const {
    auto copy = std::make_shared<NativeCollisionConfigurationWrapper>(*Native()->Live());
    return std::shared_ptr<CollisionConfiguration>(new CollisionConfiguration(std::move(copy)));
}

bool CollisionConfiguration::CoupleIsEnable(const Element& element1, const Element& element2) const {
    return Native()->CoupleIsEnable(element1, element2);
}

auto CollisionConfiguration::RetrieveElements() const -> std::vector<Element> {
    return Native()->RetrieveElements();
}

std::vector<std::shared_ptr<CollisionCouple>> CollisionConfiguration::RetrieveCouples() const {
    return Native()->RetrieveCouples();
}

std::int32_t CollisionConfiguration::RetrieveCouplesCount() const {
    return Native()->RetrieveCouplesCount();
}

void CollisionConfiguration::ConfigCouple(const Element& element1,
                                          const Element& element2,
                                          CheckCoupleConfiguration checkConfiguration,
                                          double tolerance) {
    Native()->ConfigCouple(element1, element2, checkConfiguration, tolerance);
}

void CollisionConfiguration::ConfigOwnerAgainstAll(const Owner& owner,
                                                   CheckCoupleConfiguration checkConfiguration,
                                                   double tolerance) {
    Native()->ConfigOwnerAgainstAll(owner, checkConfiguration, tolerance);
}

void CollisionConfiguration::ConfigInterOwners(Sequence<Owner> ownersList,
                                               CheckCoupleConfiguration checkConfiguration,
                                               double tolerance) {
    Native()->ConfigInterOwners(ownersList, checkConfiguration, tolerance);
}

void CollisionConfiguration::ConfigIntraOwner(const Owner& owner,
                                              CheckCoupleConfiguration checkConfiguration,
                                              double tolerance) {
    Native()->ConfigIntraOwner(owner, checkConfiguration, tolerance);
}

void CollisionConfiguration::DisableAllChecks(const Owner& owner) {
    Native()->DisableAllChecks(owner);
}

void CollisionConfiguration::DisableAllChecks() {
    Native()->DisableAllChecks();
}

void CollisionConfiguration::EnableAllIntersectChecks(bool allowTouch, double tolerance) {
    Native()->EnableAllIntersectChecks(allowTouch, tolerance);
}

void CollisionConfiguration::EnableAllAlmostCollisionChecks(double /*clearance*/) {
    Native();
    throw NotImplementedException("This method is post-poned");
}

void CollisionConfiguration::EnableOwnerAgainstAllOnly(const Owner& owner,
                                                       CheckCoupleConfiguration configuration,
                                                       double tolerance) {
    Native()->EnableOwnerAgainstAllOnly(owner, configuration, tolerance);
}

void CollisionConfiguration::EnableInterOwnersOnly(Sequence<Owner> ownersList,
                                                   CheckCoupleConfiguration configuration,
                                                   double tolerance) {
    Native()->EnableInterOwnersOnly(ownersList, configuration, tolerance);
}

void CollisionConfiguration::EnableIntraOwnerOnly(const Owner& owner,
                                                  CheckCoupleConfiguration configuration,
                                                  double tolerance) {
    Native()->EnableIntraOwnerOnly(owner, configuration, tolerance);
}

}  // namespace Ostrel::Quarrix::Collisions
