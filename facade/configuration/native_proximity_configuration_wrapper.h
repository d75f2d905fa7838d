#pragma once

#include "configuration/native_configuration_wrapper.h"
#include "ostrel/quarrix/proximity_configuration.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// The proximity configuration over the engine's. What callers may expect stands with the interface.
class NativeProximityConfigurationWrapper final : public NativeConfigurationWrapper<ProximityKind> {
public:
    NativeProximityConfigurationWrapper();
    /// The same elements and pairs, with uses of its own.
    explicit NativeProximityConfigurationWrapper(const Configuration& source);
    /// Adopts a configuration that came back from a scene: elements, owners and pairs are rebuilt here, and
    /// nothing of the given one is kept. Throws `ArgumentNullException` for null.
    explicit NativeProximityConfigurationWrapper(tarn::IProximityConfiguration* retrieved);
    /// Around an engine's configuration without bodies, for tests.
    explicit NativeProximityConfigurationWrapper(std::unique_ptr<tarn::IProximityConfiguration> native);

    void AddElement(const Element& element, const Setting& setting) override;
    void AddElements(Sequence<Element> elements, const Setting& setting) override;
    void MergeConfiguration(const std::shared_ptr<IProximityConfiguration>& configuration,
                            const Setting& setting,
                            MergePolicy policy) override;
    std::shared_ptr<ProximitySetting> CoupleIsEnable(const Element& element1,
                                                     const Element& element2) const override;
    std::vector<std::shared_ptr<ProximityCouple>> RetrieveCouples() const override;
    void ConfigCouple(const Element& element1, const Element& element2, const Setting& setting) override;
    void ConfigOwnerAgainstAll(const Owner& owner, const Setting& setting) override;
    void ConfigInterOwners(Sequence<Owner> ownersList, const Setting& setting) override;
    void ConfigIntraOwner(const Owner& owner, const Setting& setting) override;
    void EnableOwnerAgainstAllOnly(const Owner& owner, const Setting& setting) override;
    void EnableInterOwnersOnly(Sequence<Owner> ownersList, const Setting& setting) override;
    void EnableIntraOwnerOnly(const Owner& owner, const Setting& setting) override;
};

}  // namespace Ostrel::Quarrix::Collisions
