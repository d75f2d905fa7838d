#include "configuration/native_collision_configuration_wrapper.h"

#include "configuration/adoption.h"
#include "configuration/element_list.h"
#include "ostrel/quarrix/exceptions.h"

#include <utility>

namespace Ostrel::Quarrix::Collisions {

namespace {

/// All that the engine is told of a setting.
bool Enables(CheckCoupleConfiguration configuration) {
    return configuration == CheckCoupleConfiguration::Intersection;
}

NativeCollisionConfigurationWrapper::Configuration& LiveOf(
    const std::shared_ptr<ICollisionConfiguration>& configuration) {
    return RequireWrapper<NativeCollisionConfigurationWrapper>(configuration).Live();
}

}  // namespace

NativeCollisionConfigurationWrapper::NativeCollisionConfigurationWrapper()
    : configuration_(std::make_shared<Configuration>()) {}

NativeCollisionConfigurationWrapper::NativeCollisionConfigurationWrapper(const Configuration& source)
    : configuration_(std::make_shared<Configuration>(source)) {}

NativeCollisionConfigurationWrapper::NativeCollisionConfigurationWrapper(
    tarn::ICollisionConfiguration* retrieved)
    : NativeCollisionConfigurationWrapper() {
    if (!retrieved) throw ArgumentNullException("configuration");
    Adopt<tarn::ICollisionConfiguration, tarn::CollisionPair>(
        *retrieved,
        [this](const Element& element) { AddElement(element, CheckCoupleConfiguration::None, 0.0); },
        [this](const Element& first, const Element& second, const tarn::CollisionPair& /*pair*/) {
            configuration_->ConfigCouple(first, second, true);
        });
}

NativeCollisionConfigurationWrapper::NativeCollisionConfigurationWrapper(
    std::unique_ptr<tarn::ICollisionConfiguration> native)
    : configuration_(std::make_shared<Configuration>(std::move(native))) {}

auto NativeCollisionConfigurationWrapper::Live() const -> Configuration& {
    if (!configuration_) throw ObjectDisposedException("");
    return *configuration_;
}

void NativeCollisionConfigurationWrapper::AddElement(const Element& element,
                                                     CheckCoupleConfiguration checkConfiguration,
                                                     double /*tolerance*/) {
    Live();
    const std::shared_ptr<Configuration> configuration = configuration_;
    configuration->AddElement(element, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::AddElements(Sequence<Element> elements,
                                                      CheckCoupleConfiguration checkConfiguration,
                                                      double /*tolerance*/) {
    Live();
    const std::shared_ptr<Configuration> configuration = configuration_;
    const std::vector<Element> distinct = DistinctElements(elements);
    const ElementsManager::Lock lock(ElementsManager::get_Instance());
    for (const Element& element : distinct) configuration->AddKnown(element, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::RemoveElement(const Element& element) {
    Live().RemoveElement(element);
}

void NativeCollisionConfigurationWrapper::RemoveAllElements() {
    Live().RemoveAllElements();
}

void NativeCollisionConfigurationWrapper::MergeConfiguration(
    const std::shared_ptr<ICollisionConfiguration>& configuration,
    CheckCoupleConfiguration checkConfiguration,
    double /*tolerance*/) {
    Configuration& mine = Live();
    Configuration& other = LiveOf(configuration);
    if (&other != &mine) mine.Merge(other, Enables(checkConfiguration), 0);
}

void NativeCollisionConfigurationWrapper::AppendDistinctConfiguration(
    const std::shared_ptr<ICollisionConfiguration>& configuration) {
    Configuration& mine = Live();
    mine.Append(LiveOf(configuration));
}

void NativeCollisionConfigurationWrapper::Swap(
    const std::shared_ptr<ICollisionConfiguration>& configuration) {
    Configuration& mine = Live();
    Configuration& other = LiveOf(configuration);
    if (&other != &mine) mine.Swap(other);
}

std::shared_ptr<ICollisionConfiguration> NativeCollisionConfigurationWrapper::Clone() const {
    return std::make_shared<NativeCollisionConfigurationWrapper>(Live());
}

bool NativeCollisionConfigurationWrapper::CoupleIsEnable(const Element& element1,
                                                         const Element& element2) const {
    return Live().CoupleIsEnable(element1, element2).value_or(false);
}

auto NativeCollisionConfigurationWrapper::RetrieveElements() const -> std::vector<Element> {
    return Live().Elements();
}

std::vector<std::shared_ptr<CollisionCouple>> NativeCollisionConfigurationWrapper::RetrieveCouples() const {
    return BodyPair2CollisionCouple(Live().Pairs(), Live());
}

std::int32_t NativeCollisionConfigurationWrapper::RetrieveCouplesCount() const {
    return static_cast<std::int32_t>(Live().Pairs().size());
}

void NativeCollisionConfigurationWrapper::ConfigCouple(const Element& element1,
                                                       const Element& element2,
                                                       CheckCoupleConfiguration checkConfiguration,
                                                       double /*tolerance*/) {
    Live().ConfigCouple(element1, element2, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::ConfigOwnerAgainstAll(const Owner& owner,
                                                                CheckCoupleConfiguration checkConfiguration,
                                                                double /*tolerance*/) {
    Live().ConfigOwnerAgainstAll(owner, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::ConfigInterOwners(Sequence<Owner> ownersList,
                                                            CheckCoupleConfiguration checkConfiguration,
                                                            double /*tolerance*/) {
    Configuration& configuration = Live();
    RequireNotNull(ownersList, "ownersList");
    configuration.ConfigInterOwners(ownersList, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::ConfigIntraOwner(const Owner& owner,
                                                           CheckCoupleConfiguration checkConfiguration,
                                                           double /*tolerance*/) {
    Live().ConfigIntraOwner(owner, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::DisableAllChecks(const Owner& owner) {
    Live().ConfigIntraOwner(owner, false);
}

void NativeCollisionConfigurationWrapper::DisableAllChecks() {
    Live().ConfigAllCouples(false);
}

void NativeCollisionConfigurationWrapper::EnableAllIntersectChecks(bool /*allowTouch*/,
                                                                   double /*tolerance*/) {
    Live().Live().EnableAllCouples();
}

void NativeCollisionConfigurationWrapper::EnableAllAlmostCollisionChecks(double /*clearance*/) {
    Live();
    throw Exception("This method is post-poned");
}

void NativeCollisionConfigurationWrapper::EnableOwnerAgainstAllOnly(const Owner& owner,
                                                                    CheckCoupleConfiguration configuration,
                                                                    double tolerance) {
    DisableAllChecks();
    ConfigOwnerAgainstAll(owner, configuration, tolerance);
}

void NativeCollisionConfigurationWrapper::EnableInterOwnersOnly(Sequence<Owner> ownersList,
                                                                CheckCoupleConfiguration configuration,
                                                                double tolerance) {
    Live();
    RequireNotNull(ownersList, "ownersList");
    DisableAllChecks();
    ConfigInterOwners(ownersList, configuration, tolerance);
}

void NativeCollisionConfigurationWrapper::EnableIntraOwnerOnly(const Owner& owner,
                                                               CheckCoupleConfiguration configuration,
                                                               double tolerance) {
    DisableAllChecks();
    ConfigIntraOwner(owner, configuration, tolerance);
}

}  // namespace Ostrel::Quarrix::Collisions
