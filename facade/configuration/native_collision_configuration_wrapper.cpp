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

}  // namespace

NativeCollisionConfigurationWrapper::NativeCollisionConfigurationWrapper()
    : NativeConfigurationWrapper(std::make_shared<Configuration>()) {}

NativeCollisionConfigurationWrapper::NativeCollisionConfigurationWrapper(const Configuration& source)
    : NativeConfigurationWrapper(std::make_shared<Configuration>(source)) {}

NativeCollisionConfigurationWrapper::NativeCollisionConfigurationWrapper(
    tarn::ICollisionConfiguration* retrieved)
    : NativeCollisionConfigurationWrapper() {
    if (!retrieved) throw ArgumentNullException("configuration");
    const Operation configuration = Live();
    Adopt<tarn::ICollisionConfiguration, tarn::CollisionPair>(
        *retrieved, [&](const Element& element) { configuration->AddElement(element, false); },
        [&](const Element& first, const Element& second, const tarn::CollisionPair& /*pair*/) {
            configuration->ConfigCouple(first, second, true);
        });
}

NativeCollisionConfigurationWrapper::NativeCollisionConfigurationWrapper(
    std::unique_ptr<tarn::ICollisionConfiguration> native)
    : NativeConfigurationWrapper(std::make_shared<Configuration>(std::move(native))) {}

void NativeCollisionConfigurationWrapper::AddElement(const Element& element,
                                                     CheckCoupleConfiguration checkConfiguration,
                                                     double /*tolerance*/) {
    Live()->AddElement(element, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::AddElements(Sequence<Element> elements,
                                                      CheckCoupleConfiguration checkConfiguration,
                                                      double /*tolerance*/) {
    const Operation configuration = Live();
    const std::vector<Element> distinct = DistinctElements(elements);
    const ElementsManager::Lock lock(ElementsManager::get_Instance());
    for (const Element& element : distinct) configuration->AddKnown(element, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::MergeConfiguration(
    const std::shared_ptr<ICollisionConfiguration>& configuration,
    CheckCoupleConfiguration checkConfiguration,
    double /*tolerance*/) {
    const Operation mine = Live();
    const Operation other = LiveOf(configuration);
    if (&*other != &*mine) mine->Merge(*other, Enables(checkConfiguration), 0);
}

bool NativeCollisionConfigurationWrapper::CoupleIsEnable(const Element& element1,
                                                         const Element& element2) const {
    return Live()->CoupleIsEnable(element1, element2).value_or(CollisionKind::kDisabled);
}

std::vector<std::shared_ptr<CollisionCouple>> NativeCollisionConfigurationWrapper::RetrieveCouples() const {
    const Operation configuration = Live();
    return BodyPair2CollisionCouple(configuration->Pairs(), *configuration);
}

void NativeCollisionConfigurationWrapper::ConfigCouple(const Element& element1,
                                                       const Element& element2,
                                                       CheckCoupleConfiguration checkConfiguration,
                                                       double /*tolerance*/) {
    Live()->ConfigCouple(element1, element2, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::ConfigOwnerAgainstAll(const Owner& owner,
                                                                CheckCoupleConfiguration checkConfiguration,
                                                                double /*tolerance*/) {
    Live()->ConfigOwnerAgainstAll(owner, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::ConfigInterOwners(Sequence<Owner> ownersList,
                                                            CheckCoupleConfiguration checkConfiguration,
                                                            double /*tolerance*/) {
    const Operation configuration = Live();
    RequireNotNull(ownersList, "ownersList");
    configuration->ConfigInterOwners(ownersList, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::ConfigIntraOwner(const Owner& owner,
                                                           CheckCoupleConfiguration checkConfiguration,
                                                           double /*tolerance*/) {
    Live()->ConfigIntraOwner(owner, Enables(checkConfiguration));
}

void NativeCollisionConfigurationWrapper::EnableAllIntersectChecks(bool /*allowTouch*/,
                                                                   double /*tolerance*/) {
    Live()->Native().EnableAllCouples();
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
