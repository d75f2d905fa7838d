#pragma once

#include "ostrel/quarrix/collision_configuration_element.h"
#include "ostrel/quarrix/object.h"
#include "ostrel/quarrix/sequence.h"
#include "registry/elements_manager.h"
#include "registry/flat_map.h"
#include "registry/native_body.h"

#include "tarn/collision_configuration.h"
#include "tarn/proximity_configuration.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// Key of an element in a configuration: the engine's body. Two keys are equal when the bodies are the same.
struct TValue {
    const tarn::ICollisionBody* body;

    bool operator==(const TValue&) const = default;
};

/// What is particular to collision configurations.
struct CollisionKind {
    using Interface = tarn::ICollisionConfiguration;
    using Setting = bool;
    using Pair = tarn::CollisionPair;
    /// Adding and removing holds the registry's lock throughout.
    static constexpr bool kHoldsRegistry = true;
    static std::unique_ptr<Interface> Make();
};

/// What is particular to proximity configurations.
struct ProximityKind {
    using Interface = tarn::IProximityConfiguration;
    using Setting = tarn::ProximitySetting;
    using Pair = tarn::ProximityPair;
    /// Only each call of the registry locks it, deliberately.
    static constexpr bool kHoldsRegistry = false;
    static std::unique_ptr<Interface> Make();
};

/// What the configurations of both kinds have in common: the engine's configuration, the caller's elements
/// under their bodies, and one use in the registry for each of them.
///
/// The registry can give up bodies under a configuration's feet (`ElementsManager::Clear`). The entries still
/// hold them, so nothing refers to freed memory; every operation that reaches the engine first drops such
/// entries, without giving back a use that is no longer theirs. `Elements` alone answers as things stand.
template <typename Kind>
class NativeConfiguration {
public:
    using Interface = typename Kind::Interface;
    using Setting = typename Kind::Setting;
    using Pair = typename Kind::Pair;
    using Element = std::shared_ptr<ICollisionConfigurationElement>;
    using Owner = std::shared_ptr<Object>;

    NativeConfiguration() : NativeConfiguration(Kind::Make()) {}
    /// Around an engine's configuration without bodies.
    explicit NativeConfiguration(std::unique_ptr<Interface> native);
    /// The same elements and pairs; each element gains a use.
    NativeConfiguration(const NativeConfiguration& other);
    NativeConfiguration& operator=(const NativeConfiguration&) = delete;
    /// Gives all uses back.
    ~NativeConfiguration();

    /// Throws `ArgumentNullException` ("element"). A failure of the engine becomes
    /// `InvalidOperationException` with its message, and this call's use is given back; the entry stays,
    /// deliberately.
    void AddElement(const Element& element, const Setting& setting);
    /// The same for an element that is not null, without translating failures.
    void AddKnown(const Element& element, const Setting& setting);
    void RemoveElement(const Element& element);
    void RemoveAllElements();
    void ConfigCouple(const Element& element1, const Element& element2, const Setting& setting);
    void ConfigOwnerAgainstAll(const Owner& owner, const Setting& setting);
    void ConfigInterOwners(Sequence<Owner> owners, const Setting& setting);
    void ConfigIntraOwner(const Owner& owner, const Setting& setting);
    void ConfigAllCouples(const Setting& setting) { Live().ConfigAllCouples(setting); }
    void Merge(NativeConfiguration& other, const Setting& setting, int merge_policy);
    void Append(NativeConfiguration& other);
    void Swap(NativeConfiguration& other) noexcept;

    /// The engine's answer for the couple of two registered elements; nothing where one is not registered.
    /// Throws `ArgumentNullException` ("element1", then "element2").
    auto CoupleIsEnable(const Element& element1, const Element& element2)
        -> std::optional<decltype(std::declval<Interface&>().CoupleIsEnable(nullptr, nullptr))>;
    std::vector<Element> Elements() const;
    std::vector<Pair> Pairs();
    /// The element of a body. Throws `KeyNotFoundException` for a body of another configuration.
    Element Resolve(const tarn::ICollisionBody* body) const;
    /// The engine's configuration without entries of bodies that are gone.
    Interface& Live();

private:
    struct Entry {
        Element element;
        ElementsManager::Wrapper wrapper;
        std::shared_ptr<NativeBody> native;
        /// False after a failure of the engine, which gave the use back.
        bool has_use;
    };
    using Entries = std::list<Entry>;
    struct Hash {
        std::size_t operator()(const TValue& key) const {
            return std::hash<const tarn::ICollisionBody*>()(key.body);
        }
    };
    /// What an element added has cost so far, to be given back on failure.
    enum class Taken : std::uint8_t { Nothing, Use, Body };

    static tarn::ICollisionBody* BodyOf(const Entry& entry) { return entry.native->body.get(); }
    /// Null where the registry does not know the element, or this configuration does not hold its body.
    tarn::ICollisionBody* FindBody(const Element& element) const;
    Taken Enter(const Element& element, Entry*& entry);
    void Insert(Entry entry);
    void ReleaseUse(Entry& entry);
    void DropGone();
    void MergeMaps(const NativeConfiguration& other);

    std::unique_ptr<Interface> native_;
    /// In the order in which they came.
    Entries entries_;
    FlatMap<TValue, typename Entries::iterator, Hash> map_;
    std::uint64_t seen_epoch_;
};

extern template class NativeConfiguration<CollisionKind>;
extern template class NativeConfiguration<ProximityKind>;

}  // namespace Ostrel::Quarrix::Collisions
