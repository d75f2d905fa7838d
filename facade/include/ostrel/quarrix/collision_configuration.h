#pragma once

#include "ostrel/quarrix/collision_configuration_element.h"
#include "ostrel/quarrix/collision_couple.h"
#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/enumerations.h"
#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"
#include "ostrel/quarrix/sequence.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

class NativeCollisionConfigurationWrapper;

/// Which elements take part in interference checks, and which pairs of them are checked.
///
/// A pair is checked exactly when it was last set to `Intersection`; the other settings switch it off, and
/// tolerances and clearances are accepted and not heeded. Each element counts as one use in the process-wide
/// registry of bodies, which keeps one body for each element in step with the element's events.
///
/// Errors: `ObjectDisposedException` after disposal, before all else; `ArgumentNullException` for null,
/// `ArgumentNullException` without a parameter name for an element without a mesh. What an element's own
/// code throws comes out as it is, but a `tarn::Exception` in `AddElement`. Operations on elements that are
/// not in the configuration do nothing.
///
/// After `CollisionDetector::ClearAll` a configuration has lost its bodies: the next operation but
/// `RetrieveElements` drops the elements concerned.
///
/// Thread-safety: one configuration is for one thread at a time. Operations that add or remove elements hold
/// the registry throughout, so configurations on different threads may share elements.
class QUARRIX_API ICollisionConfiguration : public IDisposable {
public:
    /// An element of the caller, shared with it.
    using Element = std::shared_ptr<ICollisionConfigurationElement>;
    /// Any object by which elements are grouped; null stands for elements without an owner.
    using Owner = std::shared_ptr<Object>;

    /// Adds an element and sets its pairs with all others. An element that is there already only has its
    /// pairs set. Throws `InvalidOperationException`, with the engine's message, where the engine refuses.
    virtual void AddElement(const Element& element,
                            CheckCoupleConfiguration checkConfiguration,
                            double tolerance) = 0;
    /// Adds each once, in no particular order. A null among them throws before anything is added.
    virtual void AddElements(Sequence<Element> elements,
                             CheckCoupleConfiguration checkConfiguration,
                             double tolerance) = 0;
    /// Removes an element with its pairs, and gives its use back.
    virtual void RemoveElement(const Element& element) = 0;
    /// Removes all elements, and gives their uses back.
    virtual void RemoveAllElements() = 0;
    /// Takes over elements and pairs of another configuration and sets the pairs between those that are new
    /// here and those that were here. Merging with itself does nothing. Throws `InvalidCastException` for a
    /// configuration of a foreign class.
    virtual void MergeConfiguration(const std::shared_ptr<ICollisionConfiguration>& configuration,
                                    CheckCoupleConfiguration checkConfiguration,
                                    double tolerance) = 0;
    /// Takes over elements and pairs of another configuration. Otherwise as the merge.
    virtual void AppendDistinctConfiguration(
        const std::shared_ptr<ICollisionConfiguration>& configuration) = 0;
    /// Exchanges elements and pairs with another configuration.
    virtual void Swap(const std::shared_ptr<ICollisionConfiguration>& configuration) = 0;
    /// A new configuration of the same elements and pairs.
    virtual std::shared_ptr<ICollisionConfiguration> Clone() const = 0;
    /// Whether the pair is checked.
    virtual bool CoupleIsEnable(const Element& element1, const Element& element2) const = 0;
    /// The elements in the order in which they came.
    virtual std::vector<Element> RetrieveElements() const = 0;
    /// The pairs that are checked, all with `Intersection` and a clearance of 0.
    virtual std::vector<std::shared_ptr<CollisionCouple>> RetrieveCouples() const = 0;
    /// How many pairs are checked.
    virtual std::int32_t RetrieveCouplesCount() const = 0;
    /// Sets one pair of elements that are both there.
    virtual void ConfigCouple(const Element& element1,
                              const Element& element2,
                              CheckCoupleConfiguration checkConfiguration,
                              double tolerance) = 0;
    /// Sets the pairs of the owner's elements with those of every other owner.
    virtual void ConfigOwnerAgainstAll(const Owner& owner,
                                       CheckCoupleConfiguration checkConfiguration,
                                       double tolerance) = 0;
    /// Sets the pairs between the elements of every two owners of the list.
    virtual void ConfigInterOwners(Sequence<Owner> ownersList,
                                   CheckCoupleConfiguration checkConfiguration,
                                   double tolerance) = 0;
    /// Sets the pairs between the owner's elements.
    virtual void ConfigIntraOwner(const Owner& owner,
                                  CheckCoupleConfiguration checkConfiguration,
                                  double tolerance) = 0;
    /// Switches off the pairs between the owner's elements.
    virtual void DisableAllChecks(const Owner& owner) = 0;
    /// Switches off all pairs.
    virtual void DisableAllChecks() = 0;
    /// Switches on all pairs. The arguments are not heeded.
    virtual void EnableAllIntersectChecks(bool allowTouch, double tolerance) = 0;
    /// Not available: throws.
    virtual void EnableAllAlmostCollisionChecks(double clearance) = 0;
    ///@{
    /// Switches off all pairs, then does what the name without `Enable` and `Only` says.
    virtual void EnableOwnerAgainstAllOnly(const Owner& owner,
                                           CheckCoupleConfiguration configuration,
                                           double tolerance) = 0;
    virtual void EnableInterOwnersOnly(Sequence<Owner> ownersList,
                                       CheckCoupleConfiguration configuration,
                                       double tolerance) = 0;
    virtual void EnableIntraOwnerOnly(const Owner& owner,
                                      CheckCoupleConfiguration configuration,
                                      double tolerance) = 0;
    ///@}
};

/// The configuration that callers construct, for `CollisionDetector`. Merging, appending and swapping take
/// another `CollisionConfiguration`; all else, null included, throws `InvalidCastException`.
class QUARRIX_API CollisionConfiguration final : public ICollisionConfiguration {
public:
    /// Without elements.
    CollisionConfiguration();
    ~CollisionConfiguration() override;
    void Dispose() override;

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
    /// Throws `NotImplementedException`.
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

private:
    friend class CollisionDetector;
    friend std::shared_ptr<const NativeCollisionConfigurationWrapper> NativeOf(
        const std::shared_ptr<ICollisionConfiguration>& configuration);

    QUARRIX_LOCAL explicit CollisionConfiguration(
        std::shared_ptr<NativeCollisionConfigurationWrapper> native);

    QUARRIX_LOCAL std::shared_ptr<NativeCollisionConfigurationWrapper> Native() const;

    bool disposed_ = false;
    std::shared_ptr<NativeCollisionConfigurationWrapper> native_;
};

}  // namespace Ostrel::Quarrix::Collisions
