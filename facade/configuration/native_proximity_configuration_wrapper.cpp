#include "configuration/native_proximity_configuration_wrapper.h"

#include "configuration/adoption.h"
#include "configuration/element_list.h"
#include "host/required.h"
#include "ostrel/quarrix/exceptions.h"

#include <utility>

namespace Ostrel::Quarrix::Collisions {

namespace {

/// What adopted elements start with: no pairs.
constexpr tarn::ProximitySetting kAdoptedSetting{false, 0.001};

tarn::ProximitySetting Required(const std::shared_ptr<ProximitySetting>& setting) {
    RequireNotNull(setting, "setting");
    return setting->ToNative();
}

}  // namespace

NativeProximityConfigurationWrapper::NativeProximityConfigurationWrapper()
    : NativeConfigurationWrapper(std::make_shared<Configuration>()) {}

NativeProximityConfigurationWrapper::NativeProximityConfigurationWrapper(const Configuration& source)
    : NativeConfigurationWrapper(std::make_shared<Configuration>(source)) {}

NativeProximityConfigurationWrapper::NativeProximityConfigurationWrapper(
    tarn::IProximityConfiguration* retrieved)
    : NativeProximityConfigurationWrapper() {
    if (!retrieved) throw ArgumentNullException("configuration");
    const Operation configuration = Live();
    Adopt<tarn::IProximityConfiguration, tarn::ProximityPair>(
        *retrieved, [&](const Element& element) { configuration->AddElement(element, kAdoptedSetting); },
        [&](const Element& first, const Element& second, const tarn::ProximityPair& pair) {
            configuration->ConfigCouple(first, second, {true, pair.Clearance});
        });
}

NativeProximityConfigurationWrapper::NativeProximityConfigurationWrapper(
    std::unique_ptr<tarn::IProximityConfiguration> native)
    : NativeConfigurationWrapper(std::make_shared<Configuration>(std::move(native))) {}

void NativeProximityConfigurationWrapper::AddElement(const Element& element, const Setting& setting) {
    const Operation configuration = Live();
    RequireNotNull(element, "element");
    configuration->AddElement(element, Required(setting));
}

/// One by one, unlike those of collision configurations: a null among them is found when its turn comes.
void NativeProximityConfigurationWrapper::AddElements(Sequence<Element> elements, const Setting& setting) {
    const Operation configuration = Live();
    RequireNotNull(elements, "elements");
    Required(setting);
    for (const Element& element : elements.ToVector()) AddElement(element, setting->Clone());
}

void NativeProximityConfigurationWrapper::MergeConfiguration(
    const std::shared_ptr<IProximityConfiguration>& configuration,
    const Setting& setting,
    MergePolicy policy) {
    const Operation mine = Live();
    const Operation other = LiveOf(configuration);
    const tarn::ProximitySetting native_setting = Required(setting);
    if (&*other != &*mine) mine->Merge(*other, native_setting, static_cast<int>(policy));
}

std::shared_ptr<ProximitySetting> NativeProximityConfigurationWrapper::CoupleIsEnable(
    const Element& element1, const Element& element2) const {
    const auto setting = Live()->CoupleIsEnable(element1, element2);
    return std::make_shared<ProximitySetting>(setting.value_or(ProximityKind::kDisabled));
}

std::vector<std::shared_ptr<ProximityCouple>> NativeProximityConfigurationWrapper::RetrieveCouples() const {
    const Operation configuration = Live();
    const std::vector<tarn::ProximityPair> pairs = configuration->Pairs();
    std::vector<std::shared_ptr<ProximityCouple>> couples;
    couples.reserve(pairs.size());
    for (const tarn::ProximityPair& pair : pairs) {
        couples.push_back(std::make_shared<ProximityCouple>(
            configuration->Resolve(pair.First), configuration->Resolve(pair.Second),
            std::make_shared<ProximitySetting>(tarn::ProximitySetting{true, pair.Clearance})));
    }
    return couples;
}

void NativeProximityConfigurationWrapper::ConfigCouple(const Element& element1,
                                                       const Element& element2,
                                                       const Setting& setting) {
    const Operation configuration = Live();
    RequireNotNull(element1, "element1");
    RequireNotNull(element2, "element2");
    configuration->ConfigCouple(element1, element2, Required(setting));
}

void NativeProximityConfigurationWrapper::ConfigOwnerAgainstAll(const Owner& owner, const Setting& setting) {
    const Operation configuration = Live();
    configuration->ConfigOwnerAgainstAll(owner, Required(setting));
}

void NativeProximityConfigurationWrapper::ConfigInterOwners(Sequence<Owner> ownersList,
                                                            const Setting& setting) {
    const Operation configuration = Live();
    RequireNotNull(ownersList, "ownersList");
    configuration->ConfigInterOwners(ownersList, Required(setting));
}

void NativeProximityConfigurationWrapper::ConfigIntraOwner(const Owner& owner, const Setting& setting) {
    const Operation configuration = Live();
    configuration->ConfigIntraOwner(owner, Required(setting));
}

void NativeProximityConfigurationWrapper::EnableOwnerAgainstAllOnly(const Owner& owner,
                                                                    const Setting& setting) {
    Live();
    Required(setting);
    DisableAllChecks();
    ConfigOwnerAgainstAll(owner, setting);
}

void NativeProximityConfigurationWrapper::EnableInterOwnersOnly(Sequence<Owner> ownersList,
                                                                const Setting& setting) {
    Live();
    RequireNotNull(ownersList, "ownersList");
    Required(setting);
    DisableAllChecks();
    ConfigInterOwners(ownersList, setting);
}

void NativeProximityConfigurationWrapper::EnableIntraOwnerOnly(const Owner& owner, const Setting& setting) {
    Live();
    Required(setting);
    DisableAllChecks();
    ConfigIntraOwner(owner, setting);
}

}  // namespace Ostrel::Quarrix::Collisions
