#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// A hash map in one block, for small keys and values: pointers and list iterators. With bodies of some
/// kilobytes between its nodes, a map of nodes would miss the caches at every step.
///
/// The part of `std::unordered_map`'s interface that is used here, with its meanings. A change may move all
/// slots. Hashes are kept, so `Equal` is asked for equal hashes only; it may throw, and it must not change
/// the map.
template <typename Key, typename Value, typename Hash, typename Equal = std::equal_to<Key>>
class FlatMap {
public:
    struct Slot {
        Key first{};
        Value second{};
        /// 0 where the slot is free.
        std::uint32_t hash = 0;
    };

    /// What `find` gives for a key that is absent.
    static constexpr Slot* end() { return nullptr; }

    const Slot* find(const Key& key) const {
        if (slots_.empty()) return end();
        const std::uint32_t hash = HashOf(key);
        for (std::size_t i = Home(hash); slots_[i].hash != 0; i = Next(i)) {
            if (slots_[i].hash == hash && Equal()(slots_[i].first, key)) return &slots_[i];
        }
        return end();
    }
    bool contains(const Key& key) const { return find(key) != end(); }

    /// The key must be absent. Changes nothing if it throws, which it does not where there is room.
    void emplace(const Key& key, const Value& value) {
        const Slot slot{key, value, HashOf(key)};
        ReserveMore(1);
        Place(slot);
        ++size_;
    }
    /// Makes room for so many further keys.
    void ReserveMore(std::size_t count) {
        std::size_t slot_count = std::max(kFewestSlots, slots_.size());
        while (slot_count < 2 * (size_ + count)) slot_count *= 2;
        if (slot_count > slots_.size()) Rehash(slot_count);
    }

    void erase(const Slot* slot) {
        auto hole = static_cast<std::size_t>(slot - slots_.data());
        // What stands behind moves up, unless that would put it before its home (Knuth, vol. 3, algorithm 6.4 R).
        for (std::size_t i = Next(hole); slots_[i].hash != 0; i = Next(i)) {
            if (Distance(Home(slots_[i].hash), i) < Distance(hole, i)) continue;
            slots_[hole] = slots_[i];
            hole = i;
        }
        slots_[hole] = {};
        --size_;
    }
    void erase(const Key& key) {
        if (const Slot* slot = find(key)) erase(slot);
    }

    void clear() noexcept {
        slots_.clear();
        size_ = 0;
    }
    void swap(FlatMap& other) noexcept {
        slots_.swap(other.slots_);
        std::swap(size_, other.size_);
    }

private:
    static constexpr std::size_t kFewestSlots = 16;

    /// Fibonacci hashing: the upper bits depend on all bits of the caller's hash. Never 0.
    static std::uint32_t HashOf(const Key& key) {
        const std::uint64_t mixed = std::uint64_t{Hash()(key)} * 0x9E3779B97F4A7C15;
        return static_cast<std::uint32_t>(mixed >> 32) | 1U;
    }
    std::size_t Mask() const { return slots_.size() - 1; }
    /// The lowest bit is always set, so it says nothing.
    std::size_t Home(std::uint32_t hash) const { return (hash >> 1) & Mask(); }
    std::size_t Next(std::size_t i) const { return (i + 1) & Mask(); }
    std::size_t Distance(std::size_t from, std::size_t to) const { return (to - from) & Mask(); }

    void Place(const Slot& slot) {
        std::size_t i = Home(slot.hash);
        while (slots_[i].hash != 0) i = Next(i);
        slots_[i] = slot;
    }
    void Rehash(std::size_t slot_count) {
        std::vector<Slot> slots(slot_count);
        slots.swap(slots_);
        for (const Slot& slot : slots) {
            if (slot.hash != 0) Place(slot);
        }
    }

    /// As many as a power of two, at most half of them taken.
    std::vector<Slot> slots_;
    std::size_t size_ = 0;
};

}  // namespace Ostrel::Quarrix::Collisions
