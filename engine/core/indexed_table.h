#pragma once

#include "core/fnv1a.h"
#include "core/prefetch.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

namespace tarn::details {

/// Entries in one contiguous array, found through a hash index over their 64-bit keys. `KeyOf` is a function
/// object from an entry to its key. Entries stand in the order of insertion; `Erase` moves the last one into
/// the gap, `EraseKeepingOrder` closes it. The same calls give the same order everywhere.
///
/// The index is an open-addressing table with linear probing that holds positions only: 11 to 22 bytes for
/// each entry. The array grows by halves, so it has up to half as much again in reserve, none after an exact
/// `ReserveMore`. Up to 2^32 - 2 entries; one more throws `std::length_error`. An insertion that throws
/// changes nothing.
template <typename Entry, typename KeyOf>
class IndexedTable {
public:
    using const_iterator = typename std::vector<Entry>::const_iterator;

    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }
    const_iterator begin() const { return entries_.begin(); }
    const_iterator end() const { return entries_.end(); }
    const Entry& operator[](std::size_t position) const { return entries_[position]; }

    bool Contains(std::uint64_t key) const { return FindSlot(key) != kNowhere; }

    /// The entry with a key, or null. Its key must not be changed through the pointer.
    const Entry* Find(std::uint64_t key) const {
        const std::size_t slot = FindSlot(key);
        return slot == kNowhere ? nullptr : &entries_[slots_[slot].position];
    }
    Entry* Find(std::uint64_t key) { return const_cast<Entry*>(std::as_const(*this).Find(key)); }

    /// Calls `visit(i, entry)` for every key i that is there, in their order. In a large table the searches
    /// wait for memory together.
    template <typename Visit>
    void FindAll(std::span<const std::uint64_t> keys, Visit visit) const {
        if (slots_.empty()) return;
        std::array<std::uint64_t, kBatch> hashes;
        for (std::size_t begin = 0; begin < keys.size(); begin += kBatch) {
            const auto batch = keys.subspan(begin, std::min(kBatch, keys.size() - begin));
            for (std::size_t i = 0; i < batch.size(); ++i) {
                hashes[i] = Fnv1a(batch[i]);
                Prefetch(&slots_[Home(hashes[i])]);
            }
            for (std::size_t i = 0; i < batch.size(); ++i) {
                const Slot& home = slots_[Home(hashes[i])];
                if (home.position != kFree) Prefetch(&entries_[home.position]);
            }
            for (std::size_t i = 0; i < batch.size(); ++i) {
                const std::size_t slot = FindSlot(batch[i], hashes[i]);
                if (slot != kNowhere) visit(begin + i, entries_[slots_[slot].position]);
            }
        }
    }

    /// Appends an entry unless its key is there already. Returns whether it was appended.
    bool Insert(Entry entry) {
        const std::uint64_t key = KeyOf()(entry);
        if (!HasRoomFor(1)) {
            if (Contains(key)) return false;
            ReserveMore(1);
        }
        return !FindOrAppend(std::move(entry), Fnv1a(key));
    }

    struct KeepPresent {
        void operator()(Entry& /*present*/, const Entry& /*entry*/) const {}
    };

    /// Inserts entries, for which there must be room, one after the other; calls `on_present(present, entry)`
    /// where the key is there already. In a large table each insertion waits for memory; here they wait
    /// together, which is more than twice as fast at fifty million entries.
    template <typename OnPresent = KeepPresent>
    void InsertAll(std::span<const Entry> entries, OnPresent on_present = {}) {
        std::array<std::uint64_t, kBatch> hashes;
        for (; !entries.empty(); entries = entries.subspan(std::min(kBatch, entries.size()))) {
            const std::size_t count = std::min(kBatch, entries.size());
            for (std::size_t i = 0; i < count; ++i) {
                hashes[i] = Fnv1a(KeyOf()(entries[i]));
                Prefetch(&slots_[Home(hashes[i])]);
            }
            for (std::size_t i = 0; i < count; ++i) {
                if (Entry* present = FindOrAppend(entries[i], hashes[i])) on_present(*present, entries[i]);
            }
        }
    }

    /// Removes the entry with a key, if any; the last entry takes its place.
    bool Erase(std::uint64_t key) {
        const std::size_t slot = FindSlot(key);
        if (slot == kNowhere) return false;
        const std::uint32_t position = slots_[slot].position;
        const std::size_t last = entries_.size() - 1;
        FreeSlot(slot);
        if (position != last) {
            slots_[FindSlot(KeyOf()(entries_[last]))].position = position;
            entries_[position] = std::move(entries_[last]);
        }
        entries_.pop_back();
        return true;
    }

    /// Removes the entry with a key, if any; the others keep their order. Takes time in proportion to the
    /// size.
    bool EraseKeepingOrder(std::uint64_t key) {
        const std::size_t slot = FindSlot(key);
        if (slot == kNowhere) return false;
        const std::uint32_t position = slots_[slot].position;
        FreeSlot(slot);
        for (std::size_t i = position + 1; i < entries_.size(); ++i)
            --slots_[FindSlot(KeyOf()(entries_[i]))].position;
        entries_.erase(entries_.begin() + position);
        return true;
    }

    /// Removes every entry for which `is_doomed` holds, as repeated calls of `Erase` from the front do.
    template <typename Predicate>
    void EraseIf(Predicate is_doomed) {
        for (std::size_t i = 0; i < entries_.size();) {
            if (is_doomed(std::as_const(entries_[i]))) {
                Erase(KeyOf()(entries_[i]));
            } else {
                ++i;
            }
        }
    }

    /// Makes room for `count` further entries: as many insertions will not throw.
    void ReserveMore(std::size_t count) {
        if (count > kMaxSize - entries_.size()) throw std::length_error("list<T> too long");
        const std::size_t needed = entries_.size() + count;
        if (needed > entries_.capacity()) entries_.reserve(std::max(needed, GrownCapacity()));
        if (needed > MaxLoad(slots_.size())) Rehash(needed);
    }

    void Clear() { *this = IndexedTable(); }

private:
    struct Slot {
        std::uint32_t position;
        std::uint32_t fingerprint;  ///< upper half of the hash, which spares most looks at entries
    };

    static constexpr std::uint32_t kFree = std::numeric_limits<std::uint32_t>::max();
    static constexpr std::size_t kMaxSize = kFree - 1;
    static constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t kFewestSlots = 8;
    /// More loads than a core keeps under way at once.
    static constexpr std::size_t kBatch = 64;

    /// Three quarters: beyond, linear probing gets long.
    static std::size_t MaxLoad(std::size_t slot_count) { return slot_count / 4 * 3; }
    bool HasRoomFor(std::size_t count) const {
        const std::size_t needed = entries_.size() + count;
        return needed <= entries_.capacity() && needed <= MaxLoad(slots_.size());
    }
    static std::uint32_t Fingerprint(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

    /// Half as much again: doubling would hold three times the entries while it copies them.
    std::size_t GrownCapacity() const {
        return std::min(kMaxSize, entries_.capacity() + entries_.capacity() / 2);
    }

    /// The low bits as they stand: they spread runs of consecutive identifiers better than chance. (Folding
    /// the upper half into them makes clusters that are a hundred times longer at ten thousand bodies.)
    std::size_t Home(std::uint64_t hash) const { return hash & (slots_.size() - 1); }
    std::size_t Next(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }
    std::uint64_t KeyAt(std::size_t slot) const { return KeyOf()(entries_[slots_[slot].position]); }

    /// Appends an entry for which there is room, unless its key is there already: then returns who has it.
    Entry* FindOrAppend(Entry entry, std::uint64_t hash) {
        const std::uint64_t key = KeyOf()(entry);
        std::size_t slot = Home(hash);
        for (; slots_[slot].position != kFree; slot = Next(slot)) {
            if (slots_[slot].fingerprint == Fingerprint(hash) && KeyAt(slot) == key)
                return &entries_[slots_[slot].position];
        }
        assert(HasRoomFor(1));
        slots_[slot] = {static_cast<std::uint32_t>(entries_.size()), Fingerprint(hash)};
        entries_.push_back(std::move(entry));
        return nullptr;
    }

    std::size_t FindSlot(std::uint64_t key) const {
        return slots_.empty() ? kNowhere : FindSlot(key, Fnv1a(key));
    }
    std::size_t FindSlot(std::uint64_t key, std::uint64_t hash) const {
        for (std::size_t slot = Home(hash); slots_[slot].position != kFree; slot = Next(slot)) {
            if (slots_[slot].fingerprint == Fingerprint(hash) && KeyAt(slot) == key) return slot;
        }
        return kNowhere;
    }

    /// Frees a slot and closes the gap: whoever was pushed past it by probing moves up, so that searches
    /// still end at the first free slot. Reads keys through the slots: all entries must still be in their
    /// places.
    void FreeSlot(std::size_t gap) {
        for (std::size_t slot = Next(gap); slots_[slot].position != kFree; slot = Next(slot)) {
            const std::size_t home = Home(Fnv1a(KeyAt(slot)));
            const std::size_t mask = slots_.size() - 1;
            if (((slot - home) & mask) >= ((slot - gap) & mask)) {
                slots_[gap] = slots_[slot];
                gap = slot;
            }
        }
        slots_[gap].position = kFree;
    }

    void Rehash(std::size_t needed) {
        std::size_t slot_count = std::max(kFewestSlots, slots_.size());
        while (MaxLoad(slot_count) < needed) slot_count *= 2;
        std::vector<Slot> slots(slot_count, Slot{kFree, 0});
        slots_.swap(slots);
        slots = {};
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            const std::uint64_t hash = Fnv1a(KeyOf()(entries_[i]));
            std::size_t slot = Home(hash);
            while (slots_[slot].position != kFree) slot = Next(slot);
            slots_[slot] = {static_cast<std::uint32_t>(i), Fingerprint(hash)};
        }
    }

    std::vector<Entry> entries_;
    std::vector<Slot> slots_;
};

/// The key of a pointer that is the entry itself: its address.
struct AddressKey {
    std::uint64_t operator()(const void* pointer) const { return reinterpret_cast<std::uintptr_t>(pointer); }
};

}  // namespace tarn::details
