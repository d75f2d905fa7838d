#pragma once

#include "configuration/native_configuration_wrapper.h"
#include "ostrel/quarrix/collision_configuration.h"

#include "tarn/collision_result.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// The collision configuration over the engine's. What callers may expect stands with the interface.
class NativeCollisionConfigurationWrapper final : public NativeConfigurationWrapper<CollisionKind> {
public:
    NativeCollisionConfigurationWrapper();
    /// The same elements and pairs, with uses of its own.
    explicit NativeCollisionConfigurationWrapper(const Configuration& source);
    /// Adopts a configuration that came back from a scene: elements, owners and pairs are rebuilt here, and
    /// nothing of the given one is kept. Throws `ArgumentNullException` for null.
    explicit NativeCollisionConfigurationWrapper(tarn::ICollisionConfiguration* retrieved);
    /// Around an engine's configuration without bodies, for tests.
    explicit NativeCollisionConfigurationWrapper(std::unique_ptr<tarn::ICollisionConfiguration> native);

    void AddElement(const Element& element,
                    CheckCoupleConfiguration checkConfiguration,
                    double tolerance) override;
    void AddElements(Sequence<Element> elements,
                     CheckCoupleConfiguration checkConfiguration,
                     double tolerance) override;
    void MergeConfiguration(const std::shared_ptr<ICollisionConfiguration>& configuration,
                            CheckCoupleConfiguration checkConfiguration,
                            double tolerance) override;
    bool CoupleIsEnable(const Element& element1, const Element& element2) const override;
    std::vector<std::shared_ptr<CollisionCouple>> RetrieveCouples() const override;
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
};

}  // namespace Ostrel::Quarrix::Collisions
