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
};
struct KeyOfNumbered {
    std::uint64_t operator()(const Numbered& entry) const { return entry.key; }
};
using Table = IndexedTable<Numbered, KeyOfNumbered>;

TEST(Fnv1a, HashesEightBytesFromTheLeastSignificant) {
    EXPECT_EQ(Fnv1a(0), 0xa8c7f832281a39c5U);
    EXPECT_EQ(Fnv1a(1), 0x89cd31291d2aefa4U);
    EXPECT_EQ(Fnv1a(0x0000000300000007U), 0xabdcf70eb1169ed1U);
    EXPECT_EQ(Fnv1a(0xffffffffffffffffU), 0x8cf51a8bfca3883dU);
    EXPECT_EQ(Fnv1a(0x6867666564636261U), 0x25da8c1836a8d66dU) << "the text abcdefgh";
}

/// The same operations on a vector with linear search.
class Model {
public:
    std::vector<Numbered> entries;

    std::size_t PositionOf(std::uint64_t key) const {
        const auto has_key = [key](const Numbered& entry) { return entry.key == key; };
        return static_cast<std::size_t>(std::ranges::find_if(entries, has_key) - entries.begin());
    }
    bool Insert(const Numbered& entry) {
        if (PositionOf(entry.key) < entries.size()) return false;
        entries.push_back(entry);
        return true;
    }
    bool Erase(std::uint64_t key) {
        const std::size_t position = PositionOf(key);
        if (position == entries.size()) return false;
        entries[position] = entries.back();
        entries.pop_back();
        return true;
    }
    bool EraseKeepingOrder(std::uint64_t key) {
        return std::erase_if(entries, [key](const Numbered& entry) { return entry.key == key; }) == 1;
    }
    template <typename Predicate>
    void EraseIf(Predicate is_doomed) {
        for (std::size_t i = 0; i < entries.size();) {
            if (is_doomed(entries[i])) {
                Erase(entries[i].key);
            } else {
                ++i;
            }
        }
    }
};

void ExpectSame(const Table& table, const Model& model, const std::vector<std::uint64_t>& keys) {
    ASSERT_EQ(table.size(), model.entries.size());
    ASSERT_EQ(table.empty(), model.entries.empty());
    for (std::size_t i = 0; i < table.size(); ++i) {
        ASSERT_EQ(table[i].key, model.entries[i].key) << "position " << i;
        ASSERT_EQ(table[i].value, model.entries[i].value) << "position " << i;
    }
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
                const Numbered entry{key, operation};
                ASSERT_EQ(table.Insert(entry), model.Insert(entry));
            } else if (kind == 11 && below(10) == 0) {
                const std::uint64_t remainder = below(3);
                const auto is_doomed = [&](const Numbered& entry) {
                    return static_cast<std::uint64_t>(entry.value) % 3 == remainder;
                };
                table.EraseIf(is_doomed);
                model.EraseIf(is_doomed);
            } else if (kind == 10) {
                // A batch repeats keys, of itself and of the table: the first to come stays.
                std::vector<Numbered> batch(below(operation % 5 == 0 ? 200 : 20));
                for (std::size_t i = 0; i < batch.size(); ++i)
                    batch[i] = {keys[below(keys.size())], 1000 + static_cast<int>(i)};
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
        Table copy = table;
        table.Clear();
        ASSERT_NO_FATAL_FAILURE(ExpectSame(copy, model, keys)) << "a copy stands by itself";
        ASSERT_NO_FATAL_FAILURE(ExpectSame(table, Model(), keys));
    }
}

TEST(IndexedTable, BehavesAsALinearSearchWhereFewKeysComeAgainAndAgain) {
    std::vector<std::uint64_t> keys;
    for (std::uint64_t key = 0; key < 12; ++key) keys.push_back(key << (key % 2 == 0 ? 0 : 56));
    ExpectModelHolds(keys, 1);
}

/// All keys want one slot, or its neighbour, of any table up to 128 slots; the last slot makes probes wrap
/// around.
TEST(IndexedTable, BehavesAsALinearSearchWhereHomeSlotsCollide) {
    for (const std::uint64_t wanted : {0U, 63U, 127U}) {
        std::vector<std::uint64_t> keys;
        for (std::uint64_t key = 0; keys.size() < 60; ++key) {
            const std::uint64_t hash = Fnv1a(key);
            const std::uint64_t home = hash & 127U;
            if (home == wanted || (keys.size() % 4 == 0 && home == ((wanted + 1) & 127U)))
                keys.push_back(key);
        }
        ExpectModelHolds(keys, 10 + wanted);
    }
}

/// Keys whose hashes agree in the upper half and in the seven lowest bits: only the keys themselves tell them
/// apart.
TEST(IndexedTable, BehavesAsALinearSearchWhereHashesNearlyAgree) {
    const std::vector<std::uint64_t> keys{16446275815537246033U, 6105174807560764046U, 9531540298029079000U,
                                          3569200186234642965U,  953217030403966363U,  1143212762367637637U,
                                          9842530436680086244U,  17302925816429832649U};
    for (std::size_t i = 0; i < keys.size(); i += 2)
        ASSERT_EQ((Fnv1a(keys[i]) ^ Fnv1a(keys[i + 1])) & 0xffffffff0000007fU, 0U);
    ExpectModelHolds(keys, 20);
}

TEST(IndexedTable, RefusesMoreThanItCanCountAndStaysAsItWas) {
    Table table;
    table.Insert({1, 10});
    EXPECT_THROW(table.ReserveMore(0xffffffffU), std::length_error);
    EXPECT_THROW(table.ReserveMore(0xffffffffffffffffU), std::length_error);
    Model model;
    model.Insert({1, 10});
    ExpectSame(table, model, {0, 1, 2});
}

/// A table filled to what was reserved stays where it is when a key comes again: at fifty million entries,
/// asking for room that nobody needs copies them all.
TEST(IndexedTable, MovesNothingForAnEntryThatIsThere) {
    Table table;
    table.ReserveMore(1000);
    table.Insert({0, 0});
    const Numbered* const begin = &table[0];
    for (std::uint64_t key = 1; key < 1000; ++key) {
        table.Insert({key, 0});
        ASSERT_EQ(&table[0], begin) << "moved at key " << key << ", within what was reserved";
    }
    EXPECT_FALSE(table.Insert({7, 1}));
    EXPECT_EQ(&table[0], begin);
    EXPECT_EQ(table.Find(7)->value, 0);
}

}  // namespace
}  // namespace tarn::details
