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
constexpr tarn::ProximitySetting kDisabled{false, 0.0};

tarn::ProximitySetting Required(const std::shared_ptr<ProximitySetting>& setting) {
    RequireNotNull(setting, "setting");
    return setting->ToNative();
}

NativeProximityConfigurationWrapper::Configuration& LiveOf(
    const std::shared_ptr<IProximityConfiguration>& configuration) {
    return RequireWrapper<NativeProximityConfigurationWrapper>(configuration).Live();
}

}  // namespace

NativeProximityConfigurationWrapper::NativeProximityConfigurationWrapper()
    : configuration_(std::make_shared<Configuration>()) {}

NativeProximityConfigurationWrapper::NativeProximityConfigurationWrapper(const Configuration& source)
    : configuration_(std::make_shared<Configuration>(source)) {}

NativeProximityConfigurationWrapper::NativeProximityConfigurationWrapper(
    tarn::IProximityConfiguration* retrieved)
    : NativeProximityConfigurationWrapper() {
    if (!retrieved) throw ArgumentNullException("configuration");
    Adopt<tarn::IProximityConfiguration, tarn::ProximityPair>(
        *retrieved, [this](const Element& element) { configuration_->AddElement(element, kAdoptedSetting); },
        [this](const Element& first, const Element& second, const tarn::ProximityPair& pair) {
            configuration_->ConfigCouple(first, second, {true, pair.Clearance});
        });
}

NativeProximityConfigurationWrapper::NativeProximityConfigurationWrapper(
    std::unique_ptr<tarn::IProximityConfiguration> native)
    : configuration_(std::make_shared<Configuration>(std::move(native))) {}

auto NativeProximityConfigurationWrapper::Live() const -> Configuration& {
    if (!configuration_) throw ObjectDisposedException("");
    return *configuration_;
}

void NativeProximityConfigurationWrapper::AddElement(const Element& element, const Setting& setting) {
    Live();
    const std::shared_ptr<Configuration> configuration = configuration_;
    RequireNotNull(element, "element");
    configuration->AddElement(element, Required(setting));
}

void NativeProximityConfigurationWrapper::AddElements(Sequence<Element> elements, const Setting& setting) {
    Live();
    RequireNotNull(elements, "elements");
    Required(setting);
    for (std::size_t i = 0; i < elements.size(); ++i) AddElement(elements[i], setting->Clone());
}

void NativeProximityConfigurationWrapper::RemoveElement(const Element& element) {
    Live().RemoveElement(element);
}

void NativeProximityConfigurationWrapper::RemoveAllElements() {
    Live().RemoveAllElements();
}

void NativeProximityConfigurationWrapper::MergeConfiguration(
    const std::shared_ptr<IProximityConfiguration>& configuration,
    const Setting& setting,
    MergePolicy policy) {
    Configuration& mine = Live();
    Configuration& other = LiveOf(configuration);
    const tarn::ProximitySetting native_setting = Required(setting);
    if (&other != &mine) mine.Merge(other, native_setting, static_cast<int>(policy));
}

void NativeProximityConfigurationWrapper::AppendDistinctConfiguration(
    const std::shared_ptr<IProximityConfiguration>& configuration) {
    Configuration& mine = Live();
    mine.Append(LiveOf(configuration));
}

void NativeProximityConfigurationWrapper::Swap(
    const std::shared_ptr<IProximityConfiguration>& configuration) {
    Configuration& mine = Live();
    Configuration& other = LiveOf(configuration);
    if (&other != &mine) mine.Swap(other);
}

std::shared_ptr<IProximityConfiguration> NativeProximityConfigurationWrapper::Clone() const {
    return std::make_shared<NativeProximityConfigurationWrapper>(Live());
}

std::shared_ptr<ProximitySetting> NativeProximityConfigurationWrapper::CoupleIsEnable(
    const Element& element1, const Element& element2) const {
    const auto setting = Live().CoupleIsEnable(element1, element2);
    return std::make_shared<ProximitySetting>(setting.value_or(kDisabled));
}

auto NativeProximityConfigurationWrapper::RetrieveElements() const -> std::vector<Element> {
    return Live().Elements();
}

std::vector<std::shared_ptr<ProximityCouple>> NativeProximityConfigurationWrapper::RetrieveCouples() const {
    Configuration& configuration = Live();
    std::vector<std::shared_ptr<ProximityCouple>> couples;
    for (const tarn::ProximityPair& pair : configuration.Pairs()) {
        const tarn::ProximitySetting setting{true, pair.Clearance};
        couples.push_back(std::make_shared<ProximityCouple>(configuration.Resolve(pair.First),
                                                            configuration.Resolve(pair.Second),
                                                            std::make_shared<ProximitySetting>(setting)));
    }
    return couples;
}

std::int32_t NativeProximityConfigurationWrapper::RetrieveCouplesCount() const {
    return static_cast<std::int32_t>(Live().Pairs().size());
}

void NativeProximityConfigurationWrapper::ConfigCouple(const Element& element1,
                                                       const Element& element2,
                                                       const Setting& setting) {
    Configuration& configuration = Live();
    RequireNotNull(element1, "element1");
    RequireNotNull(element2, "element2");
    configuration.ConfigCouple(element1, element2, Required(setting));
}

void NativeProximityConfigurationWrapper::ConfigOwnerAgainstAll(const Owner& owner, const Setting& setting) {
    Configuration& configuration = Live();
    configuration.ConfigOwnerAgainstAll(owner, Required(setting));
}

void NativeProximityConfigurationWrapper::ConfigInterOwners(Sequence<Owner> ownersList,
                                                            const Setting& setting) {
    Configuration& configuration = Live();
    RequireNotNull(ownersList, "ownersList");
    configuration.ConfigInterOwners(ownersList, Required(setting));
}

void NativeProximityConfigurationWrapper::ConfigIntraOwner(const Owner& owner, const Setting& setting) {
    Configuration& configuration = Live();
    configuration.ConfigIntraOwner(owner, Required(setting));
}

void NativeProximityConfigurationWrapper::DisableAllChecks(const Owner& owner) {
    Live().ConfigIntraOwner(owner, kDisabled);
}

void NativeProximityConfigurationWrapper::DisableAllChecks() {
    Live().ConfigAllCouples(kDisabled);
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
