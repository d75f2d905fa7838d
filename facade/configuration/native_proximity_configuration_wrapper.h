#pragma once

#include "configuration/native_configuration.h"
#include "ostrel/quarrix/proximity_configuration.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// The proximity configuration over the engine's. What callers may expect stands with the interface.
class NativeProximityConfigurationWrapper final : public IProximityConfiguration {
public:
    using Configuration = NativeConfiguration<ProximityKind>;

    NativeProximityConfigurationWrapper();
    /// The same elements and pairs, with uses of its own.
    explicit NativeProximityConfigurationWrapper(const Configuration& source);
    /// Adopts a configuration that came back from a scene: elements, owners and pairs are rebuilt here, and
    /// nothing of the given one is kept. Throws `ArgumentNullException` for null.
    explicit NativeProximityConfigurationWrapper(tarn::IProximityConfiguration* retrieved);
    /// Around an engine's configuration without bodies, for tests.
    explicit NativeProximityConfigurationWrapper(std::unique_ptr<tarn::IProximityConfiguration> native);

    void Dispose() override { configuration_.reset(); }

    void AddElement(const Element& element, const Setting& setting) override;
    void AddElements(Sequence<Element> elements, const Setting& setting) override;
    void RemoveElement(const Element& element) override;
    void RemoveAllElements() override;
    void MergeConfiguration(const std::shared_ptr<IProximityConfiguration>& configuration,
                            const Setting& setting,
                            MergePolicy policy) override;
    void AppendDistinctConfiguration(const std::shared_ptr<IProximityConfiguration>& configuration) override;
    void Swap(const std::shared_ptr<IProximityConfiguration>& configuration) override;
    std::shared_ptr<IProximityConfiguration> Clone() const override;
    std::shared_ptr<ProximitySetting> CoupleIsEnable(const Element& element1,
                                                     const Element& element2) const override;
    std::vector<Element> RetrieveElements() const override;
    std::vector<std::shared_ptr<ProximityCouple>> RetrieveCouples() const override;
    std::int32_t RetrieveCouplesCount() const override;
    void ConfigCouple(const Element& element1, const Element& element2, const Setting& setting) override;
    void ConfigOwnerAgainstAll(const Owner& owner, const Setting& setting) override;
    void ConfigInterOwners(Sequence<Owner> ownersList, const Setting& setting) override;
    void ConfigIntraOwner(const Owner& owner, const Setting& setting) override;
    void DisableAllChecks(const Owner& owner) override;
    void DisableAllChecks() override;
    void EnableOwnerAgainstAllOnly(const Owner& owner, const Setting& setting) override;
    void EnableInterOwnersOnly(Sequence<Owner> ownersList, const Setting& setting) override;
    void EnableIntraOwnerOnly(const Owner& owner, const Setting& setting) override;

    /// Throws `ObjectDisposedException` after disposal.
    Configuration& Live() const;

private:
    /// Null after disposal. Operations that run elements' code share it: that code may dispose this.
    std::shared_ptr<Configuration> configuration_;
};

}  // namespace Ostrel::Quarrix::Collisions
