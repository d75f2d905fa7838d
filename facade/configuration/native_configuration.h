#pragma once

#include "ostrel/quarrix/collision_configuration.h"
#include "ostrel/quarrix/object.h"
#include "ostrel/quarrix/proximity_configuration.h"
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
#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// Key of an element in a configuration: the engine's body. Two keys are equal when the bodies are the same.
struct TValue {
    const tarn::ICollisionBody* body;

    bool operator==(const TValue&) const = default;
};

class NativeCollisionConfigurationWrapper;
class NativeProximityConfigurationWrapper;

/// What is particular to collision configurations.
struct CollisionKind {
    using PublicInterface = ICollisionConfiguration;
    using Wrapper = NativeCollisionConfigurationWrapper;
    using Interface = tarn::ICollisionConfiguration;
    using Setting = bool;
    using Pair = tarn::CollisionPair;
    static constexpr Setting kDisabled = false;
    /// Adding and removing holds the registry's lock throughout.
    static constexpr bool kHoldsRegistry = true;
    static std::unique_ptr<Interface> Make();
};

/// What is particular to proximity configurations.
struct ProximityKind {
    using PublicInterface = IProximityConfiguration;
    using Wrapper = NativeProximityConfigurationWrapper;
    using Interface = tarn::IProximityConfiguration;
    using Setting = tarn::ProximitySetting;
    using Pair = tarn::ProximityPair;
    static constexpr Setting kDisabled{false, 0.0};
    /// Only each call of the registry locks it, deliberately.
    static constexpr bool kHoldsRegistry = false;
    static std::unique_ptr<Interface> Make();
};

/// What the configurations of both kinds have in common: the engine's configuration, the caller's elements
/// under their bodies, and one use in the registry for each of them.
///
/// The registry can give up bodies under a configuration's feet (`ElementsManager::Clear`). The entries still
/// hold them, so nothing refers to freed memory; an `Operation` first drops such entries, without giving back
/// a use that is no longer theirs.
template <typename Kind>
class NativeConfiguration {
public:
    using Interface = typename Kind::Interface;
    using Setting = typename Kind::Setting;
    using Pair = typename Kind::Pair;
    using Element = std::shared_ptr<ICollisionConfigurationElement>;
    using Owner = std::shared_ptr<Object>;

    /// A configuration for the length of one operation on it. Elements' code may dispose the configuration
    /// meanwhile: this keeps it. Elements that are dropped go after the operation, when nobody uses the
    /// configuration any more, and after the registry's lock: their destructors may do anything.
    class Operation {
    public:
        explicit Operation(std::shared_ptr<NativeConfiguration> configuration)
            : configuration_(std::move(configuration)),
              dropped_(configuration_->DropGone()) {}
        Operation(const Operation&) = delete;
        Operation& operator=(const Operation&) = delete;
        ~Operation();

        NativeConfiguration* operator->() const { return configuration_.get(); }
        NativeConfiguration& operator*() const { return *configuration_; }

    private:
        std::shared_ptr<NativeConfiguration> configuration_;
        std::vector<Element> dropped_;
    };

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
    void ConfigAllCouples(const Setting& setting) { native_->ConfigAllCouples(setting); }
    void Merge(const NativeConfiguration& other, const Setting& setting, int merge_policy);
    void Append(const NativeConfiguration& other);
    void Swap(NativeConfiguration& other) noexcept;

    /// The engine's answer for the couple of two registered elements; nothing where one is not registered.
    /// Throws `ArgumentNullException` ("element1", then "element2").
    auto CoupleIsEnable(const Element& element1, const Element& element2) const
        -> std::optional<decltype(std::declval<Interface&>().CoupleIsEnable(nullptr, nullptr))>;
    std::vector<Element> Elements() const;
    std::vector<Pair> Pairs() const;
    /// The element of a body. Throws `KeyNotFoundException` for a body of another configuration.
    Element Resolve(const tarn::ICollisionBody* body) const;
    /// The engine's configuration.
    Interface& Native() { return *native_; }

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
    std::shared_ptr<NativeBody> Find(const Element& element) const;
    Taken Enter(const Element& element, Entry*& entry);
    void Insert(Entry entry);
    void GiveUse(Entry& entry);
    std::vector<Element> DropGone();
    template <typename MergeNative>
    void MergeMaps(const NativeConfiguration& other, const MergeNative& merge_native);

    std::unique_ptr<Interface> native_;
    /// In the order in which they came.
    Entries entries_;
    FlatMap<TValue, typename Entries::iterator, Hash> map_;
    std::uint64_t seen_epoch_;
};

extern template class NativeConfiguration<CollisionKind>;
extern template class NativeConfiguration<ProximityKind>;

}  // namespace Ostrel::Quarrix::Collisions
