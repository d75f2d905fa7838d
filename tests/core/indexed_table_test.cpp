#include "core/indexed_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <vector>

namespace tarn::details {
namespace {

struct Numbered {
    std::uint64_t key;
    int value;
    bool operator==(const Numbered&) const = default;
};
struct KeyOfNumbered {
    std::uint64_t operator()(const Numbered& entry) const { return entry.key; }
};
using Table = IndexedTable<Numbered, KeyOfNumbered>;

TEST(Fnv1a, HashesEightBytesFromTheLeastSignificant) {
    EXPECT_EQ(Fnv1a(0), 0xa8c7f832281a39c5U);
    EXPECT_EQ(Fnv1a(0x0000000300000007U), 0xabdcf70eb1169ed1U);
    EXPECT_EQ(Fnv1a(0x6867666564636261U), 0x25da8c1836a8d66dU) << "the text abcdefgh";
}

/// The same operations on a vector with linear search.
struct Model {
    std::vector<Numbered> entries;

    std::size_t PositionOf(std::uint64_t key) const {
        return static_cast<std::size_t>(std::ranges::find(entries, key, &Numbered::key) - entries.begin());
    }
    bool Insert(const Numbered& entry) {
        if (PositionOf(entry.key) < entries.size()) return false;
        entries.push_back(entry);
        return true;
    }
    bool Erase(std::uint64_t key) {
        if (PositionOf(key) == entries.size()) return false;
        entries[PositionOf(key)] = entries.back();
        entries.pop_back();
        return true;
    }
    bool EraseKeepingOrder(std::uint64_t key) {
        return std::erase_if(entries, [key](const Numbered& entry) { return entry.key == key; }) == 1;
    }
    template <typename Predicate>
    void EraseIf(Predicate is_doomed) {
        for (std::size_t i = 0; i < entries.size();) {
            if (!is_doomed(entries[i]) || !Erase(entries[i].key)) ++i;
        }
    }
};

void ExpectSame(const Table& table, const Model& model, const std::vector<std::uint64_t>& keys) {
    ASSERT_TRUE(std::ranges::equal(table, model.entries));
    ASSERT_EQ(table.empty(), model.entries.empty());
    std::vector<const Numbered*> found(keys.size(), nullptr);
    table.FindAll(keys, [&](std::size_t i, const Numbered& entry) { found[i] = &entry; });
    ASSERT_TRUE(std::ranges::equal(keys, found, {}, [&](std::uint64_t key) { return table.Find(key); }));
    for (const std::uint64_t key : keys) {
        const std::size_t position = model.PositionOf(key);
        const bool is_there = position < model.entries.size();
        ASSERT_EQ(table.Contains(key), is_there) << "key " << key;
        ASSERT_EQ(table.Find(key), is_there ? &table[position] : nullptr) << "key " << key;
    }
}

void ExpectModelHolds(const std::vector<std::uint64_t>& keys, std::uint64_t seed) {
    SCOPED_TRACE(seed);
    std::mt19937_64 random(seed);
    const auto below = [&](std::uint64_t bound) { return random() % bound; };
    for (int sequence = 0; sequence < 60; ++sequence) {
        SCOPED_TRACE(sequence);
        Table table;
        Model model;
        // Growing and shrinking sequences take turns.
        const std::uint64_t insertions = sequence % 3 == 0 ? 8 : sequence % 3 == 1 ? 5 : 3;
        for (int operation = 0; operation < 250; ++operation) {
            SCOPED_TRACE(operation);
            const std::uint64_t key = keys[below(keys.size())];
            const std::uint64_t kind = below(12);
            if (kind < insertions) {
                ASSERT_EQ(table.Insert({key, operation}), model.Insert({key, operation}));
            } else if (kind == 11 && below(10) == 0) {
                const auto is_doomed = [&](const Numbered& entry) {
                    return (entry.value + operation) % 3 == 0;
                };
                table.EraseIf(is_doomed);
                model.EraseIf(is_doomed);
            } else if (kind == 10) {
                // A batch repeats keys, of itself and of the table: the first to come stays.
                std::vector<Numbered> batch(below(operation % 5 == 0 ? 200 : 20));
                for (Numbered& entry : batch)
                    entry = {keys[below(keys.size())], static_cast<int>(below(1000))};
                table.ReserveMore(batch.size());
                table.InsertAll(batch);
                for (const Numbered& entry : batch) model.Insert(entry);
            } else if (kind % 2 == 0) {
                ASSERT_EQ(table.Erase(key), model.Erase(key));
            } else {
                ASSERT_EQ(table.EraseKeepingOrder(key), model.EraseKeepingOrder(key));
            }
            ASSERT_NO_FATAL_FAILURE(ExpectSame(table, model, keys));
        }
        const Table copy = table;
        table.Clear();
        ASSERT_NO_FATAL_FAILURE(ExpectSame(copy, model, keys)) << "a copy stands by itself";
        ASSERT_NO_FATAL_FAILURE(ExpectSame(table, Model(), keys));
    }
}

TEST(IndexedTable, BehavesAsALinearSearch) {
    std::vector<std::uint64_t> few;
    for (std::uint64_t key = 0; key < 12; ++key) few.push_back(key << (key % 2 == 0 ? 0 : 56));
    ExpectModelHolds(few, 1);
    // All want one slot, or its neighbour, of any table up to 128 slots; the last slot makes probes wrap
    // around.
    for (const std::uint64_t wanted : {0U, 63U, 127U}) {
        std::vector<std::uint64_t> colliding;
        for (std::uint64_t key = 0; colliding.size() < 60; ++key) {
            const std::uint64_t shift = (Fnv1a(key) - wanted) & 127U;
            if (shift == 0 || (colliding.size() % 4 == 0 && shift == 1)) colliding.push_back(key);
        }
        ExpectModelHolds(colliding, 10 + wanted);
    }
    // Hashes that agree in the upper half and in the seven lowest bits: only the keys tell them apart.
    const std::vector<std::uint64_t> alike{16446275815537246033U, 6105174807560764046U, 9531540298029079000U,
                                           3569200186234642965U};
    for (std::size_t i = 0; i < alike.size(); i += 2)
        ASSERT_EQ((Fnv1a(alike[i]) ^ Fnv1a(alike[i + 1])) & 0xffffffff0000007fU, 0U);
    ExpectModelHolds(alike, 20);
}

TEST(IndexedTable, RefusesMoreThanItCanCountAndStaysAsItWas) {
    Table table;
    table.Insert({1, 10});
    EXPECT_THROW(table.ReserveMore(0xffffffffU), std::length_error);
    EXPECT_THROW(table.ReserveMore(0xffffffffffffffffU), std::length_error);
    ExpectSame(table, {{{1, 10}}}, {0, 1, 2});
}

/// A table filled to what was reserved stays where it is when a key comes again: at fifty million entries,
/// asking for room that nobody needs copies them all.
TEST(IndexedTable, MovesNothingForAnEntryThatIsThere) {
    Table table;
    table.ReserveMore(1000);
    table.Insert({0, 0});
    const Numbered* const begin = &table[0];
    for (std::uint64_t key = 1; key < 1000; ++key) table.Insert({key, 0});
    EXPECT_FALSE(table.Insert({7, 1}));
    EXPECT_EQ(&table[0], begin);
    EXPECT_EQ(table.Find(7)->value, 0);
}

}  // namespace
}  // namespace tarn::details
