#include "configuration/native_configuration.h"

#include "host/required.h"
#include "ostrel/quarrix/exceptions.h"
#include "registry/native_identifiers.h"

#include "tarn/exception.h"
#include "tarn/factory.h"

#include <utility>

namespace Ostrel::Quarrix::Collisions {

namespace {

/// The registry's lock, where the kind of configuration asks for it.
template <typename Kind>
class MembershipLock {
public:
    MembershipLock() {
        if constexpr (Kind::kHoldsRegistry) lock_.emplace(ElementsManager::get_Instance());
    }

private:
    std::optional<ElementsManager::Lock> lock_;
};

}  // namespace

std::unique_ptr<tarn::ICollisionConfiguration> CollisionKind::Make() {
    return tarn::make_unique_configuration();
}

std::unique_ptr<tarn::IProximityConfiguration> ProximityKind::Make() {
    return tarn::make_unique_proximity_configuration();
}

template <typename Kind>
NativeConfiguration<Kind>::NativeConfiguration(std::unique_ptr<Interface> native)
    : native_(std::move(native)),
      seen_epoch_(ElementsManager::get_Instance().GetEpoch()) {}

template <typename Kind>
NativeConfiguration<Kind>::NativeConfiguration(const NativeConfiguration& other)
    : NativeConfiguration(std::unique_ptr<Interface>(other.native_->Clone())) {
    seen_epoch_ = other.seen_epoch_;
    const ElementsManager::Lock lock(ElementsManager::get_Instance());
    for (Entry entry : other.entries_) {
        // A use that went with its body is not doubled.
        entry.has_use = !entry.wrapper->IsDisposed() &&
                        ElementsManager::get_Instance().IncreaseReferenceCount(entry.element);
        Insert(std::move(entry));
    }
}

template <typename Kind>
NativeConfiguration<Kind>::~NativeConfiguration() {
    // Declared before the lock, so that elements go after it.
    Entries entries;
    const ElementsManager::Lock lock(ElementsManager::get_Instance());
    native_.reset();
    map_.clear();
    entries.swap(entries_);
    for (Entry& entry : entries) ReleaseUse(entry);
}

template <typename Kind>
void NativeConfiguration<Kind>::Insert(Entry entry) {
    const TValue key{BodyOf(entry)};
    entries_.push_back(std::move(entry));
    try {
        map_.emplace(key, std::prev(entries_.end()));
    } catch (...) {
        entries_.pop_back();
        throw;
    }
}

/// The body is let go before the registry gives it up: it sees then that nobody else holds it.
template <typename Kind>
void NativeConfiguration<Kind>::ReleaseUse(Entry& entry) {
    entry.native.reset();
    ElementsManager& manager = ElementsManager::get_Instance();
    // A wrapper that was given up takes its uses along: what is registered for the element now is another's.
    if (std::exchange(entry.has_use, false) && manager.Get(entry.element) == entry.wrapper)
        manager.Remove(entry.element);
}

template <typename Kind>
void NativeConfiguration<Kind>::DropGone() {
    const std::uint64_t epoch = ElementsManager::get_Instance().GetEpoch();
    if (epoch == seen_epoch_) return;
    Entries gone;
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        const auto next = std::next(entry);
        if (entry->wrapper->IsDisposed()) {
            native_->RemoveElement(BodyOf(*entry));
            map_.erase(TValue{BodyOf(*entry)});
            gone.splice(gone.end(), entries_, entry);
        }
        entry = next;
    }
    seen_epoch_ = epoch;
    for (Entry& entry : gone) ElementsManager::get_Instance().KeepUntilUnlocked(std::move(entry.element));
}

template <typename Kind>
auto NativeConfiguration<Kind>::Live() -> Interface& {
    DropGone();
    return *native_;
}

template <typename Kind>
tarn::ICollisionBody* NativeConfiguration<Kind>::FindBody(const Element& element) const {
    const ElementsManager::Wrapper wrapper = ElementsManager::get_Instance().Get(element);
    if (!wrapper) return nullptr;
    tarn::ICollisionBody* const body = wrapper->get_Body();
    return map_.contains(TValue{body}) ? body : nullptr;
}

/// Makes sure that there is an entry for the element, with a use.
template <typename Kind>
auto NativeConfiguration<Kind>::Enter(const Element& element, Entry*& entry) -> Taken {
    ElementsManager& manager = ElementsManager::get_Instance();
    ElementsManager::Wrapper wrapper = manager.Get(element);
    Taken taken = Taken::Nothing;
    if (wrapper) {
        const auto found = map_.find(TValue{wrapper->get_Body()});
        if (found != map_.end()) {
            entry = &*found->second;
            if (!entry->has_use) {
                entry->has_use = manager.IncreaseReferenceCount(element);
                taken = Taken::Use;
            }
            return taken;
        }
        manager.IncreaseReferenceCount(element);
        taken = Taken::Use;
    } else {
        wrapper = manager.Add(element);
        taken = Taken::Body;
        // Making the body has run the element's code, which may have added it here meanwhile.
        const auto found = map_.find(TValue{wrapper->get_Body()});
        if (found != map_.end()) {
            manager.Remove(element);
            entry = &*found->second;
            return Taken::Nothing;
        }
    }
    try {
        Insert({element, wrapper, wrapper->get_Native(), true});
    } catch (...) {
        manager.Remove(element);
        throw;
    }
    entry = &entries_.back();
    return taken;
}

template <typename Kind>
void NativeConfiguration<Kind>::AddElement(const Element& element, const Setting& setting) {
    RequireNotNull(element, "element");
    const MembershipLock<Kind> lock;
    DropGone();
    Entry* entry = nullptr;
    const Taken taken = Enter(element, entry);
    try {
        native_->AddElement(BodyOf(*entry), setting);
    } catch (const tarn::Exception& failure) {
        if (taken != Taken::Nothing) {
            entry->has_use = false;
            ElementsManager& manager = ElementsManager::get_Instance();
            if (taken == Taken::Body) {
                manager.Remove(element);
            } else {
                manager.DecreaseReferenceCount(element);
            }
        }
        throw InvalidOperationException(failure.message());
    }
}

template <typename Kind>
void NativeConfiguration<Kind>::AddKnown(const Element& element, const Setting& setting) {
    DropGone();
    Entry* entry = nullptr;
    Enter(element, entry);
    native_->AddElement(BodyOf(*entry), setting);
}

template <typename Kind>
void NativeConfiguration<Kind>::RemoveElement(const Element& element) {
    RequireNotNull(element, "element");
    Entries removed;
    const MembershipLock<Kind> lock;
    DropGone();
    tarn::ICollisionBody* const body = FindBody(element);
    if (!body) return;
    const auto found = map_.find(TValue{body});
    removed.splice(removed.end(), entries_, found->second);
    map_.erase(found);
    native_->RemoveElement(body);
    ReleaseUse(removed.front());
}

template <typename Kind>
void NativeConfiguration<Kind>::RemoveAllElements() {
    Entries removed;
    const MembershipLock<Kind> lock;
    native_->RemoveAllElements();
    map_.clear();
    removed.swap(entries_);
    for (Entry& entry : removed) ReleaseUse(entry);
}

template <typename Kind>
void NativeConfiguration<Kind>::ConfigCouple(const Element& element1,
                                             const Element& element2,
                                             const Setting& setting) {
    RequireNotNull(element1, "element1");
    RequireNotNull(element2, "element2");
    DropGone();
    tarn::ICollisionBody* const body1 = FindBody(element1);
    tarn::ICollisionBody* const body2 = FindBody(element2);
    if (body1 && body2) native_->ConfigCouple(body1, body2, setting);
}

template <typename Kind>
void NativeConfiguration<Kind>::ConfigOwnerAgainstAll(const Owner& owner, const Setting& setting) {
    const std::uint64_t id = NativeOwnerId(owner.get());
    Interface& native = Live();
    for (const std::uint64_t other : native.RetrieveOwners()) {
        if (other != id) native.ConfigInterOwners(id, other, setting);
    }
}

template <typename Kind>
void NativeConfiguration<Kind>::ConfigInterOwners(Sequence<Owner> owners, const Setting& setting) {
    std::vector<std::uint64_t> ids;
    ids.reserve(owners.size());
    for (std::size_t i = 0; i < owners.size(); ++i) ids.push_back(NativeOwnerId(owners[i].get()));
    Interface& native = Live();
    for (std::size_t i = 0; i < ids.size(); ++i) {
        for (std::size_t j = i + 1; j < ids.size(); ++j) native.ConfigInterOwners(ids[i], ids[j], setting);
    }
}

template <typename Kind>
void NativeConfiguration<Kind>::ConfigIntraOwner(const Owner& owner, const Setting& setting) {
    Live().ConfigIntraOwner(NativeOwnerId(owner.get()), setting);
}

template <typename Kind>
void NativeConfiguration<Kind>::Merge(NativeConfiguration& other, const Setting& setting, int merge_policy) {
    Live().MergeConfiguration(&other.Live(), setting, merge_policy);
    MergeMaps(other);
}

template <typename Kind>
void NativeConfiguration<Kind>::Append(NativeConfiguration& other) {
    Live().AppendDistinctConfiguration(&other.Live(), 0);
    MergeMaps(other);
}

template <typename Kind>
void NativeConfiguration<Kind>::MergeMaps(const NativeConfiguration& other) {
    ElementsManager& manager = ElementsManager::get_Instance();
    const ElementsManager::Lock lock(manager);
    for (const Entry& entry : other.entries_) {
        if (map_.contains(TValue{BodyOf(entry)})) continue;
        Insert({entry.element, entry.wrapper, entry.native, false});
        entries_.back().has_use = manager.IncreaseReferenceCount(entry.element);
    }
}

template <typename Kind>
void NativeConfiguration<Kind>::Swap(NativeConfiguration& other) noexcept {
    native_.swap(other.native_);
    entries_.swap(other.entries_);
    map_.swap(other.map_);
    std::swap(seen_epoch_, other.seen_epoch_);
}

template <typename Kind>
auto NativeConfiguration<Kind>::CoupleIsEnable(const Element& element1, const Element& element2)
    -> std::optional<decltype(std::declval<Interface&>().CoupleIsEnable(nullptr, nullptr))> {
    RequireNotNull(element1, "element1");
    RequireNotNull(element2, "element2");
    DropGone();
    const ElementsManager& manager = ElementsManager::get_Instance();
    const ElementsManager::Wrapper wrapper1 = manager.Get(element1);
    const ElementsManager::Wrapper wrapper2 = manager.Get(element2);
    if (!wrapper1 || !wrapper2) return std::nullopt;
    return native_->CoupleIsEnable(wrapper1->get_Body(), wrapper2->get_Body());
}

template <typename Kind>
auto NativeConfiguration<Kind>::Elements() const -> std::vector<Element> {
    std::vector<Element> elements;
    elements.reserve(entries_.size());
    for (const Entry& entry : entries_) elements.push_back(entry.element);
    return elements;
}

template <typename Kind>
auto NativeConfiguration<Kind>::Pairs() -> std::vector<Pair> {
    std::vector<Pair> pairs;
    return Live().RetrieveCouples(pairs);
}

template <typename Kind>
auto NativeConfiguration<Kind>::Resolve(const tarn::ICollisionBody* body) const -> Element {
    const auto found = map_.find(TValue{body});
    if (found == map_.end()) throw KeyNotFoundException("The body is not in this configuration");
    return found->second->element;
}

template class NativeConfiguration<CollisionKind>;
template class NativeConfiguration<ProximityKind>;

}  // namespace Ostrel::Quarrix::Collisions
