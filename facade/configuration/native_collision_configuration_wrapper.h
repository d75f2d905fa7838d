#pragma once

#include "configuration/native_configuration.h"
#include "ostrel/quarrix/collision_configuration.h"

#include "tarn/collision_result.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// The collision configuration over the engine's. What callers may expect stands with the interface; here
/// null configurations throw `ArgumentNullException`, and all others but this class `InvalidCastException`.
class NativeCollisionConfigurationWrapper final : public ICollisionConfiguration {
public:
    using Configuration = NativeConfiguration<CollisionKind>;

    NativeCollisionConfigurationWrapper();
    /// The same elements and pairs, with uses of its own.
    explicit NativeCollisionConfigurationWrapper(const Configuration& source);
    /// Adopts a configuration that came back from a scene: elements, owners and pairs are rebuilt here, and
    /// nothing of the given one is kept. Throws `ArgumentNullException` for null.
    explicit NativeCollisionConfigurationWrapper(tarn::ICollisionConfiguration* retrieved);
    /// Around an engine's configuration without bodies, for tests.
    explicit NativeCollisionConfigurationWrapper(std::unique_ptr<tarn::ICollisionConfiguration> native);

    void Dispose() override { configuration_.reset(); }

    void AddElement(const Element& element,
                    CheckCoupleConfiguration checkConfiguration,
                    double tolerance) override;
    void AddElements(Sequence<Element> elements,
                     CheckCoupleConfiguration checkConfiguration,
                     double tolerance) override;
    void RemoveElement(const Element& element) override;
    void RemoveAllElements() override;
    void MergeConfiguration(const std::shared_ptr<ICollisionConfiguration>& configuration,
                            CheckCoupleConfiguration checkConfiguration,
                            double tolerance) override;
    void AppendDistinctConfiguration(const std::shared_ptr<ICollisionConfiguration>& configuration) override;
    void Swap(const std::shared_ptr<ICollisionConfiguration>& configuration) override;
    std::shared_ptr<ICollisionConfiguration> Clone() const override;
    bool CoupleIsEnable(const Element& element1, const Element& element2) const override;
    std::vector<Element> RetrieveElements() const override;
    std::vector<std::shared_ptr<CollisionCouple>> RetrieveCouples() const override;
    std::int32_t RetrieveCouplesCount() const override;
    void ConfigCouple(const Element& element1,
                      const Element& element2,
                      CheckCoupleConfiguration checkConfiguration,
                      double tolerance) override;
    void ConfigOwnerAgainstAll(const Owner& owner,
                               CheckCoupleConfiguration checkConfiguration,
                               double tolerance) override;
    void ConfigInterOwners(Sequence<Owner> ownersList,
                           CheckCoupleConfiguration checkConfiguration,
                           double tolerance) override;
    void ConfigIntraOwner(const Owner& owner,
                          CheckCoupleConfiguration checkConfiguration,
                          double tolerance) override;
    void DisableAllChecks(const Owner& owner) override;
    void DisableAllChecks() override;
    void EnableAllIntersectChecks(bool allowTouch, double tolerance) override;
    /// Throws the plain `Exception`.
    void EnableAllAlmostCollisionChecks(double clearance) override;
    void EnableOwnerAgainstAllOnly(const Owner& owner,
                                   CheckCoupleConfiguration configuration,
                                   double tolerance) override;
    void EnableInterOwnersOnly(Sequence<Owner> ownersList,
                               CheckCoupleConfiguration configuration,
                               double tolerance) override;
    void EnableIntraOwnerOnly(const Owner& owner,
                              CheckCoupleConfiguration configuration,
                              double tolerance) override;

    /// Throws `ObjectDisposedException` after disposal.
    Configuration& Live() const;

private:
    /// Null after disposal. Operations that run elements' code share it: that code may dispose this.
    std::shared_ptr<Configuration> configuration_;
};

}  // namespace Ostrel::Quarrix::Collisions
