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
NativeConfiguration<Kind>::Operation::~Operation() {
    configuration_.reset();
    for (Element& element : dropped_) ElementsManager::get_Instance().KeepUntilUnlocked(std::move(element));
}

template <typename Kind>
NativeConfiguration<Kind>::NativeConfiguration(const NativeConfiguration& other)
    : NativeConfiguration(std::unique_ptr<Interface>(other.native_->Clone())) {
    seen_epoch_ = other.seen_epoch_;
    const ElementsManager::Lock lock(ElementsManager::get_Instance());
    for (const Entry& entry : other.entries_) {
        Insert({entry.element, entry.wrapper, entry.native, false});
        entries_.back().has_use = ElementsManager::get_Instance().TakeUse(*entry.wrapper);
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
    for (Entry& entry : entries) GiveUse(entry);
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
void NativeConfiguration<Kind>::GiveUse(Entry& entry) {
    entry.native.reset();
    ElementsManager& manager = ElementsManager::get_Instance();
    if (entry.wrapper->IsDisposed()) {
        manager.KeepUntilUnlocked(std::move(entry.element));
    } else if (entry.has_use) {
        manager.GiveUse(entry.element, *entry.wrapper);
    }
}

template <typename Kind>
auto NativeConfiguration<Kind>::DropGone() -> std::vector<Element> {
    std::vector<Element> dropped;
    const std::uint64_t epoch = ElementsManager::get_Instance().GetEpoch();
    if (epoch == seen_epoch_) return dropped;
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        const auto next = std::next(entry);
        if (entry->wrapper->IsDisposed()) {
            dropped.push_back(entry->element);
            native_->RemoveElement(BodyOf(*entry));
            map_.erase(TValue{BodyOf(*entry)});
            entries_.erase(entry);
        }
        entry = next;
    }
    seen_epoch_ = epoch;
    return dropped;
}

template <typename Kind>
std::shared_ptr<NativeBody> NativeConfiguration<Kind>::Find(const Element& element) const {
    const ElementsManager::Wrapper wrapper = ElementsManager::get_Instance().Get(element);
    std::shared_ptr<NativeBody> native = wrapper ? wrapper->Native() : nullptr;
    if (native && !map_.contains(TValue{native->body.get()})) native.reset();
    return native;
}

/// Makes sure that there is an entry for the element, with a use.
template <typename Kind>
auto NativeConfiguration<Kind>::Enter(const Element& element, Entry*& entry) -> Taken {
    ElementsManager& manager = ElementsManager::get_Instance();
    ElementsManager::Found found = manager.FindOrMake(element);
    std::shared_ptr<NativeBody> native = found.wrapper->Native();
    // Another thread may have cleared the registry.
    if (!native) throw ObjectDisposedException("");
    const auto* const slot = map_.find(TValue{native->body.get()});
    if (slot) entry = &*slot->second;
    if (slot && entry->has_use) return Taken::Nothing;
    if (!found.is_new && !manager.TakeUse(*found.wrapper)) throw ObjectDisposedException("");
    if (slot) {
        entry->has_use = true;
        return Taken::Use;
    }
    try {
        Insert({element, found.wrapper, std::move(native), true});
    } catch (...) {
        manager.GiveUse(element, *found.wrapper);
        throw;
    }
    entry = &entries_.back();
    return found.is_new ? Taken::Body : Taken::Use;
}

template <typename Kind>
void NativeConfiguration<Kind>::AddElement(const Element& element, const Setting& setting) {
    RequireNotNull(element, "element");
    const MembershipLock<Kind> lock;
    Entry* entry = nullptr;
    Taken taken = Taken::Nothing;
    try {
        taken = Enter(element, entry);
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
    Entry* entry = nullptr;
    Enter(element, entry);
    native_->AddElement(BodyOf(*entry), setting);
}

template <typename Kind>
void NativeConfiguration<Kind>::RemoveElement(const Element& element) {
    RequireNotNull(element, "element");
    Entries removed;
    const MembershipLock<Kind> lock;
    std::shared_ptr<NativeBody> native = Find(element);
    if (!native) return;
    native_->RemoveElement(native->body.get());
    const auto* const slot = map_.find(TValue{native->body.get()});
    removed.splice(removed.end(), entries_, slot->second);
    map_.erase(slot);
    // The registry looks whether others hold the body.
    native.reset();
    GiveUse(removed.front());
}

template <typename Kind>
void NativeConfiguration<Kind>::RemoveAllElements() {
    Entries removed;
    const MembershipLock<Kind> lock;
    native_->RemoveAllElements();
    map_.clear();
    removed.swap(entries_);
    for (Entry& entry : removed) GiveUse(entry);
}

template <typename Kind>
void NativeConfiguration<Kind>::ConfigCouple(const Element& element1,
                                             const Element& element2,
                                             const Setting& setting) {
    RequireNotNull(element1, "element1");
    RequireNotNull(element2, "element2");
    const std::shared_ptr<NativeBody> native1 = Find(element1);
    const std::shared_ptr<NativeBody> native2 = Find(element2);
    if (native1 && native2) native_->ConfigCouple(native1->body.get(), native2->body.get(), setting);
}

template <typename Kind>
void NativeConfiguration<Kind>::ConfigOwnerAgainstAll(const Owner& owner, const Setting& setting) {
    const std::uint64_t id = NativeOwnerId(owner.get());
    for (const std::uint64_t other : native_->RetrieveOwners()) {
        if (other != id) native_->ConfigInterOwners(id, other, setting);
    }
}

template <typename Kind>
void NativeConfiguration<Kind>::ConfigInterOwners(Sequence<Owner> owners, const Setting& setting) {
    std::vector<std::uint64_t> ids;
    ids.reserve(owners.size());
    for (const Owner& owner : owners.ToVector()) ids.push_back(NativeOwnerId(owner.get()));
    for (std::size_t i = 0; i < ids.size(); ++i) {
        for (std::size_t j = i + 1; j < ids.size(); ++j) native_->ConfigInterOwners(ids[i], ids[j], setting);
    }
}

template <typename Kind>
void NativeConfiguration<Kind>::ConfigIntraOwner(const Owner& owner, const Setting& setting) {
    native_->ConfigIntraOwner(NativeOwnerId(owner.get()), setting);
}

template <typename Kind>
void NativeConfiguration<Kind>::Merge(const NativeConfiguration& other,
                                      const Setting& setting,
                                      int merge_policy) {
    MergeMaps(other, [&] { native_->MergeConfiguration(other.native_.get(), setting, merge_policy); });
}

template <typename Kind>
void NativeConfiguration<Kind>::Append(const NativeConfiguration& other) {
    MergeMaps(other, [&] { native_->AppendDistinctConfiguration(other.native_.get(), 0); });
}

/// What can throw comes before the engine takes the bodies over: none of them may be without an entry here.
template <typename Kind>
template <typename MergeNative>
void NativeConfiguration<Kind>::MergeMaps(const NativeConfiguration& other, const MergeNative& merge_native) {
    Entries added;
    for (const Entry& entry : other.entries_) {
        if (!map_.contains(TValue{BodyOf(entry)}))
            added.push_back({entry.element, entry.wrapper, entry.native, false});
    }
    map_.ReserveMore(added.size());
    const ElementsManager::Lock lock(ElementsManager::get_Instance());
    merge_native();
    for (auto entry = added.begin(); entry != added.end(); ++entry) {
        entry->has_use = ElementsManager::get_Instance().TakeUse(*entry->wrapper);
        map_.emplace(TValue{BodyOf(*entry)}, entry);
    }
    entries_.splice(entries_.end(), added);
}

template <typename Kind>
void NativeConfiguration<Kind>::Swap(NativeConfiguration& other) noexcept {
    native_.swap(other.native_);
    entries_.swap(other.entries_);
    map_.swap(other.map_);
    std::swap(seen_epoch_, other.seen_epoch_);
}

template <typename Kind>
auto NativeConfiguration<Kind>::CoupleIsEnable(const Element& element1, const Element& element2) const
    -> std::optional<decltype(std::declval<Interface&>().CoupleIsEnable(nullptr, nullptr))> {
    RequireNotNull(element1, "element1");
    RequireNotNull(element2, "element2");
    const ElementsManager& manager = ElementsManager::get_Instance();
    const ElementsManager::Wrapper wrapper1 = manager.Get(element1);
    const ElementsManager::Wrapper wrapper2 = manager.Get(element2);
    // Held: they need not be in this configuration, and other threads may remove them.
    const std::shared_ptr<NativeBody> native1 = wrapper1 ? wrapper1->Native() : nullptr;
    const std::shared_ptr<NativeBody> native2 = wrapper2 ? wrapper2->Native() : nullptr;
    if (!native1 || !native2) return std::nullopt;
    return native_->CoupleIsEnable(native1->body.get(), native2->body.get());
}

template <typename Kind>
auto NativeConfiguration<Kind>::Elements() const -> std::vector<Element> {
    std::vector<Element> elements;
    elements.reserve(entries_.size());
    for (const Entry& entry : entries_) elements.push_back(entry.element);
    return elements;
}

template <typename Kind>
auto NativeConfiguration<Kind>::Pairs() const -> std::vector<Pair> {
    std::vector<Pair> pairs;
    native_->RetrieveCouples(pairs);
    return pairs;
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
