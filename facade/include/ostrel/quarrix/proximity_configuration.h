#pragma once

#include "ostrel/quarrix/collision_configuration_element.h"
#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/enumerations.h"
#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"
#include "ostrel/quarrix/proximity_couple.h"
#include "ostrel/quarrix/proximity_setting.h"
#include "ostrel/quarrix/sequence.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// Which elements take part in clearance checks, which pairs of them are measured, and the clearance of each
/// pair. Made by `CollisionFactory`.
///
/// Errors and the rest are those of `ICollisionConfiguration`; a null setting throws `ArgumentNullException`
/// ("setting"), after the other arguments have been tested.
///
/// Thread-safety: as there, but for the registry, which is locked call by call only: while one thread changes
/// the elements of a proximity configuration, no other may add or remove the same elements anywhere.
class QUARRIX_API IProximityConfiguration : public IDisposable {
public:
    /// An element of the caller, shared with it.
    using Element = std::shared_ptr<ICollisionConfigurationElement>;
    /// Any object by which elements are grouped; null stands for elements without an owner.
    using Owner = std::shared_ptr<Object>;
    /// Read when it is handed in, not kept.
    using Setting = std::shared_ptr<ProximitySetting>;

    /// Adds an element and sets its pairs with all others. An element that is there already only has its
    /// pairs set. Throws `InvalidOperationException`, with the engine's message, where the engine refuses.
    virtual void AddElement(const Element& element, const Setting& setting) = 0;
    /// Adds one after the other. A null among them throws when its turn comes.
    virtual void AddElements(Sequence<Element> elements, const Setting& setting) = 0;
    /// Removes an element with its pairs, and gives its use back.
    virtual void RemoveElement(const Element& element) = 0;
    /// Removes all elements, and gives their uses back.
    virtual void RemoveAllElements() = 0;
    /// Takes over elements and pairs of another configuration and sets the pairs between those that are new
    /// here and those that were here. The engine does not heed the policy.
    virtual void MergeConfiguration(const std::shared_ptr<IProximityConfiguration>& configuration,
                                    const Setting& setting,
                                    MergePolicy policy) = 0;
    /// Takes over elements and pairs of another configuration.
    virtual void AppendDistinctConfiguration(
        const std::shared_ptr<IProximityConfiguration>& configuration) = 0;
    /// Exchanges elements and pairs with another configuration.
    virtual void Swap(const std::shared_ptr<IProximityConfiguration>& configuration) = 0;
    /// A new configuration of the same elements and pairs.
    virtual std::shared_ptr<IProximityConfiguration> Clone() const = 0;
    /// The setting of the pair; off, with a clearance of 0, for a pair that is not measured.
    virtual std::shared_ptr<ProximitySetting> CoupleIsEnable(const Element& element1,
                                                             const Element& element2) const = 0;
    /// The elements in the order in which they came.
    virtual std::vector<Element> RetrieveElements() const = 0;
    /// The pairs that are measured, with their settings.
    virtual std::vector<std::shared_ptr<ProximityCouple>> RetrieveCouples() const = 0;
    /// How many pairs are measured.
    virtual std::int32_t RetrieveCouplesCount() const = 0;
    /// Sets one pair of elements that are both there. A negative clearance cannot be set: `ProximitySetting`
    /// has none.
    virtual void ConfigCouple(const Element& element1, const Element& element2, const Setting& setting) = 0;
    /// Sets the pairs of the owner's elements with those of every other owner.
    virtual void ConfigOwnerAgainstAll(const Owner& owner, const Setting& setting) = 0;
    /// Sets the pairs between the elements of every two owners of the list.
    virtual void ConfigInterOwners(Sequence<Owner> ownersList, const Setting& setting) = 0;
    /// Sets the pairs between the owner's elements.
    virtual void ConfigIntraOwner(const Owner& owner, const Setting& setting) = 0;
    /// Switches off the pairs between the owner's elements.
    virtual void DisableAllChecks(const Owner& owner) = 0;
    /// Switches off all pairs.
    virtual void DisableAllChecks() = 0;
    ///@{
    /// Switches off all pairs, then does what the name without `Enable` and `Only` says. Arguments are tested
    /// before.
    virtual void EnableOwnerAgainstAllOnly(const Owner& owner, const Setting& setting) = 0;
    virtual void EnableInterOwnersOnly(Sequence<Owner> ownersList, const Setting& setting) = 0;
    virtual void EnableIntraOwnerOnly(const Owner& owner, const Setting& setting) = 0;
    ///@}
};

}  // namespace Ostrel::Quarrix::Collisions
