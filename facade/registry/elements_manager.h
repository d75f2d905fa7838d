#pragma once

#include "ostrel/quarrix/collision_configuration_element.h"
#include "ostrel/quarrix/disposable.h"
#include "registry/debug_info.h"
#include "registry/flat_map.h"
#include "registry/native_collision_body_wrapper.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// The process-wide registry: one body for each element that some configuration uses, and the number of its
/// uses.
///
/// One re-entrant lock guards it all. Elements are called while it is held (`Load`, `get_Name`, `Equals`,
/// `GetHashCode` and so on), so they may use the object model on their own thread. Last references to
/// elements go after the outermost holder has released it. The operations that say so throw
/// `ObjectDisposedException` once the registry is disposed; the others keep working.
class ElementsManager final : public IDisposable {
public:
    using Element = std::shared_ptr<ICollisionConfigurationElement>;
    using Elements = std::vector<Element>;
    using Wrapper = std::shared_ptr<NativeCollisionBodyWrapper>;

    /// The one registry. It is never replaced, and as an object never destroyed.
    static ElementsManager& get_Instance();
    static const DebugInfo& get_DebugInfo();

    ElementsManager(const ElementsManager&) = delete;
    ElementsManager& operator=(const ElementsManager&) = delete;

    /// Gives up all bodies and counts itself as disposed. Of several calls the first counts.
    void Dispose() override;

    /// Takes a use of an element; its body is made at the first.
    Wrapper Add(const Element& element);
    std::vector<Wrapper> Add(const Elements& elements);
    /// Gives a use back. The body goes with the last one: where the count is then exactly 0.
    void Remove(const Element& element);
    void Remove(const Elements& elements);
    /// Null for an element that is not registered.
    Wrapper Get(const Element& element) const;
    std::vector<Wrapper> Get(const Elements& elements) const;
    /// Gives up all bodies, whatever their uses.
    void Clear();
    std::size_t GetElementsCount() const;
    /// Whether the element is registered; if so, its count changes. Giving back never removes the element,
    /// also at 0 and below, deliberately.
    bool IncreaseReferenceCount(const Element& element);
    bool DecreaseReferenceCount(const Element& element);
    void IncreaseReferenceCount(const Elements& elements);
    void DecreaseReferenceCount(const Elements& elements);

    /// Takes a use if the wrapper is registered; the count in either case. Throws once disposed.
    std::int32_t IncreaseReferenceCount(NativeCollisionBodyWrapper& wrapper);
    /// The count after giving a use back, registered or not. Throws once disposed.
    std::int32_t DecreaseReferenceCount(NativeCollisionBodyWrapper& wrapper);
    /// 0 for an element that is not registered. Throws once disposed.
    std::int32_t GetReferenceCount(const Element& element) const;
    /// Whether as many elements are registered as the list has, and each of them is in the list. Throws once
    /// disposed.
    bool CheckElementsExist(const Elements& elements) const;
    /// For each, whether it is registered. Throws once disposed.
    std::vector<bool> GetElementsExist(const Elements& elements) const;
    /// The registered elements and their counts, for a log. Throws once disposed.
    std::string Dump() const;

    /// Holds the registry still for several operations in turn.
    class Lock {
    public:
        explicit Lock(const ElementsManager& manager) : manager_(manager) {
            manager_.lock_.lock();
            ++manager_.lock_depth_;
        }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        ~Lock();

    private:
        const ElementsManager& manager_;
    };
    Lock GetLock() const { return Lock(*this); }

    /// An element's wrapper, and whether it was made just now: then one use has been taken, else none.
    struct Found {
        Wrapper wrapper;
        bool is_new;
    };
    Found FindOrMake(const Element& element);
    /// Takes a use of a registered element whose wrapper is known, which spares looking it up. False where
    /// the registry has given the body up.
    bool TakeUse(NativeCollisionBodyWrapper& wrapper);
    /// As `Remove`, if the element still has this wrapper; what was given up took its uses along.
    void GiveUse(const Element& element, NativeCollisionBodyWrapper& wrapper);

    /// Takes over what may be the last reference to an element: it goes after the registry's lock.
    void KeepUntilUnlocked(Element element) const noexcept;

    /// Changes whenever bodies are given up that somebody else than the registry still holds.
    std::uint64_t GetEpoch() const { return epoch_.load(std::memory_order_acquire); }

private:
    struct Entry {
        Element element;
        Wrapper wrapper;
    };
    using Entries = std::list<Entry>;

    /// By the element's own equality and hash.
    struct Hash {
        std::size_t operator()(const ICollisionConfigurationElement* element) const {
            return static_cast<std::uint32_t>(element->GetHashCode());
        }
    };
    struct Equal {
        bool operator()(const ICollisionConfigurationElement* a,
                        const ICollisionConfigurationElement* b) const {
            return a->Equals(b);
        }
    };

    ElementsManager();
    ~ElementsManager() override = default;

    void RequireNotDisposed() const;
    const Entry* Find(const Element& element) const;
    void ClearLocked();

    std::atomic<std::uint64_t> epoch_{0};
    /// Guards everything below.
    mutable std::recursive_mutex lock_;
    mutable int lock_depth_ = 0;
    /// What was removed, until the outermost lock is released.
    mutable Entries removed_;
    bool disposed_ = false;
    std::uint64_t registrations_ = 0;
    /// In the order of registration.
    Entries entries_;
    FlatMap<const ICollisionConfigurationElement*, Entries::iterator, Hash, Equal> map_;
};

}  // namespace Ostrel::Quarrix::Collisions
