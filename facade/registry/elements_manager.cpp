#include "registry/elements_manager.h"

#include "ostrel/quarrix/exceptions.h"

#include <algorithm>
#include <utility>

namespace Ostrel::Quarrix::Collisions {

namespace {

/// The end of a line in the host's text files.
#ifdef _WIN32
constexpr const char* kPlatformLineEnd = "\r\n";
#else
constexpr const char* kPlatformLineEnd = "\n";
#endif

/// Guards making the registry, and what counts that and its disposals. Taken last, and never while an
/// element is called.
std::mutex& SyncInstance() {
    static std::mutex sync_instance;
    return sync_instance;
}

/// Never destroyed, like the registry.
DebugInfo& Counts() {
    static auto* const counts = new DebugInfo();
    return *counts;
}

}  // namespace

ElementsManager::Lock::~Lock() {
    Entries removed;
    if (--manager_.lock_depth_ == 0) removed.swap(manager_.removed_);
    manager_.lock_.unlock();
}

ElementsManager& ElementsManager::get_Instance() {
    static auto* const instance = [] {
        const std::lock_guard lock(SyncInstance());
        return new ElementsManager();
    }();
    return *instance;
}

const DebugInfo& ElementsManager::get_DebugInfo() {
    return Counts();
}

ElementsManager::ElementsManager() {
    DebugInfo& counts = Counts();
    counts.short_name = std::to_string(counts.new_count);
    ++counts.new_count;
}

void ElementsManager::Dispose() {
    const Lock lock(*this);
    {
        const std::lock_guard sync_lock(SyncInstance());
        Counts().short_name.clear();
        ++Counts().delete_count;
        ++Counts().dispose_count;
    }
    if (disposed_) return;
    disposed_ = true;
    ClearLocked();
}

void ElementsManager::RequireNotDisposed() const {
    if (disposed_) throw ObjectDisposedException("");
}

const ElementsManager::Entry* ElementsManager::Find(const Element& element) const {
    if (!element) return nullptr;
    const auto found = map_.find(element.get());
    return found == map_.end() ? nullptr : &*found->second;
}

auto ElementsManager::FindOrMake(const Element& element) -> Found {
    const Lock lock(*this);
    if (const Entry* entry = Find(element)) return {entry->wrapper, false};
    const std::uint64_t registrations = registrations_;
    Entries made;
    made.push_back({element, NativeCollisionBodyWrapper::Make(element)});
    // Making the wrapper has run the element's code, which may have registered it meanwhile.
    if (registrations != registrations_) {
        if (const Entry* entry = Find(element)) return {entry->wrapper, false};
    }
    map_.emplace(element.get(), made.begin());
    ++registrations_;
    entries_.splice(entries_.end(), made);
    return {entries_.back().wrapper, true};
}

ElementsManager::Wrapper ElementsManager::Add(const Element& element) {
    const Lock lock(*this);
    Found found = FindOrMake(element);
    if (!found.is_new) found.wrapper->IncrementRefCount();
    return std::move(found.wrapper);
}

std::vector<ElementsManager::Wrapper> ElementsManager::Add(const Elements& elements) {
    const Lock lock(*this);
    std::vector<Wrapper> wrappers;
    wrappers.reserve(elements.size());
    for (const Element& element : elements) wrappers.push_back(Add(element));
    return wrappers;
}

void ElementsManager::Remove(const Element& element) {
    const Lock lock(*this);
    if (const Entry* const entry = Find(element)) GiveUse(entry->element, *entry->wrapper);
}

void ElementsManager::Remove(const Elements& elements) {
    const Lock lock(*this);
    for (const Element& element : elements) Remove(element);
}

bool ElementsManager::TakeUse(NativeCollisionBodyWrapper& wrapper) {
    const Lock lock(*this);
    if (wrapper.IsDisposed()) return false;
    wrapper.IncrementRefCount();
    return true;
}

void ElementsManager::GiveUse(const Element& element, NativeCollisionBodyWrapper& wrapper) {
    const Lock lock(*this);
    if (wrapper.IsDisposed()) return;
    wrapper.DecrementRefCount();
    if (wrapper.RefCount() != 0) return;
    const auto found = map_.find(element.get());
    if (found == map_.end() || found->second->wrapper.get() != &wrapper) return;
    const Entries::iterator entry = found->second;
    map_.erase(found);
    removed_.splice(removed_.end(), entries_, entry);
    if (entry->wrapper->GiveUp()) epoch_.fetch_add(1, std::memory_order_release);
}

ElementsManager::Wrapper ElementsManager::Get(const Element& element) const {
    const Lock lock(*this);
    const Entry* const entry = Find(element);
    return entry ? entry->wrapper : nullptr;
}

std::vector<ElementsManager::Wrapper> ElementsManager::Get(const Elements& elements) const {
    const Lock lock(*this);
    std::vector<Wrapper> wrappers;
    wrappers.reserve(elements.size());
    for (const Element& element : elements) wrappers.push_back(Get(element));
    return wrappers;
}

void ElementsManager::KeepUntilUnlocked(Element element) const noexcept {
    const Lock lock(*this);
    try {
        removed_.push_back({std::move(element), nullptr});
    } catch (...) {
        // Memory ran out: it goes now.
    }
}

void ElementsManager::Clear() {
    const Lock lock(*this);
    ClearLocked();
}

void ElementsManager::ClearLocked() {
    map_.clear();
    Entries cleared;
    cleared.swap(entries_);
    // Disposing runs the elements' code, which may register others.
    for (const Entry& entry : cleared) entry.wrapper->GiveUp();
    epoch_.fetch_add(1, std::memory_order_release);
    removed_.splice(removed_.end(), cleared);
}

std::size_t ElementsManager::GetElementsCount() const {
    const Lock lock(*this);
    return entries_.size();
}

bool ElementsManager::IncreaseReferenceCount(const Element& element) {
    const Lock lock(*this);
    const Entry* const entry = Find(element);
    if (entry) entry->wrapper->IncrementRefCount();
    return entry != nullptr;
}

bool ElementsManager::DecreaseReferenceCount(const Element& element) {
    const Lock lock(*this);
    const Entry* const entry = Find(element);
    if (entry) entry->wrapper->DecrementRefCount();
    return entry != nullptr;
}

void ElementsManager::IncreaseReferenceCount(const Elements& elements) {
    const Lock lock(*this);
    for (const Element& element : elements) IncreaseReferenceCount(element);
}

void ElementsManager::DecreaseReferenceCount(const Elements& elements) {
    const Lock lock(*this);
    for (const Element& element : elements) DecreaseReferenceCount(element);
}

std::int32_t ElementsManager::IncreaseReferenceCount(NativeCollisionBodyWrapper& wrapper) {
    const Lock lock(*this);
    RequireNotDisposed();
    const auto is_it = [&wrapper](const Entry& entry) { return entry.wrapper.get() == &wrapper; };
    if (std::ranges::any_of(entries_, is_it)) wrapper.IncrementRefCount();
    return wrapper.RefCount();
}

std::int32_t ElementsManager::DecreaseReferenceCount(NativeCollisionBodyWrapper& wrapper) {
    const Lock lock(*this);
    RequireNotDisposed();
    wrapper.DecrementRefCount();
    return wrapper.RefCount();
}

std::int32_t ElementsManager::GetReferenceCount(const Element& element) const {
    const Lock lock(*this);
    RequireNotDisposed();
    const Entry* const entry = Find(element);
    return entry ? entry->wrapper->RefCount() : 0;
}

bool ElementsManager::CheckElementsExist(const Elements& elements) const {
    const Lock lock(*this);
    RequireNotDisposed();
    const auto is_listed = [&elements](const Entry& entry) {
        return std::ranges::any_of(elements, [&entry](const Element& element) {
            return element && entry.element->Equals(element.get());
        });
    };
    return elements.size() == entries_.size() && std::ranges::all_of(entries_, is_listed);
}

std::vector<bool> ElementsManager::GetElementsExist(const Elements& elements) const {
    const Lock lock(*this);
    RequireNotDisposed();
    std::vector<bool> exist;
    exist.reserve(elements.size());
    for (const Element& element : elements) exist.push_back(Find(element) != nullptr);
    return exist;
}

std::string ElementsManager::Dump() const {
    const Lock lock(*this);
    RequireNotDisposed();
    if (entries_.empty()) return "Manager is empty";
    // The header ends as the platform ends lines, the entries do not.
    std::string text = "Manager elements count is " + std::to_string(entries_.size()) + kPlatformLineEnd;
    for (const Entry& entry : entries_)
        text += entry.element->get_Name() + " [" + std::to_string(entry.wrapper->RefCount()) + "]\n";
    return text;
}

}  // namespace Ostrel::Quarrix::Collisions
