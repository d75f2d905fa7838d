#include "config/pair_key.h"

#include "config/body_pair.h"
#include "config/foreign_classes.h"
#include "core/collision_body.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

namespace tarn::details {
namespace {

/// Whether a number's set bits are all set in another, bit by bit.
bool IsBitSubset(std::uint32_t part, std::uint32_t whole) {
    for (int bit = 0; bit < 32; ++bit) {
        if (((part >> bit) & 1U) == 1U && ((whole >> bit) & 1U) == 0U) return false;
    }
    return true;
}

TEST(PairKey, NamesACoupleWhateverTheOrder) {
    EXPECT_EQ(MakePairKey(7, 3), 0x0000000300000007U);
    EXPECT_EQ(MakePairKey(3, 7), 0x0000000300000007U);
    EXPECT_EQ(MakePairKey(5, 5), 0x0000000500000005U);
    EXPECT_EQ(MakePairKey(0xffffffffU, 0), 0x00000000ffffffffU);
    EXPECT_EQ(MakePairKey(0x80000000U, 0x7fffffffU), 0x7fffffff80000000U) << "identifiers are unsigned";
}

TEST(PairKey, ContainsByEqualityAndIsTouchedByBitSubset) {
    EXPECT_TRUE(KeyIsTouchedBy(0x0000000300000007U, 1));
    EXPECT_TRUE(KeyIsTouchedBy(0x0000000300000007U, 4)) << "by the larger identifier alone";
    EXPECT_TRUE(KeyIsTouchedBy(0x0000000300000004U, 2)) << "by the smaller identifier alone";
    EXPECT_FALSE(KeyIsTouchedBy(0x0000000300000007U, 8));
    EXPECT_FALSE(KeyIsTouchedBy(MakePairKey(1, 2), 3)) << "the identifiers do not add up";
    std::mt19937_64 random(1);
    // Few bits, at either end of the word, so that subsets and equal identifiers are common.
    const auto identifier = [&] {
        const auto bits = static_cast<std::uint32_t>(random() % 16);
        return random() % 2 == 0 ? bits : bits << 28;
    };
    for (int i = 0; i < 20000; ++i) {
        const std::uint32_t id1 = identifier();
        const std::uint32_t id2 = identifier();
        const std::uint32_t id = identifier();
        SCOPED_TRACE(testing::Message() << id1 << ' ' << id2 << ' ' << id);
        const PairKey key = MakePairKey(id1, id2);
        ASSERT_EQ(KeyContains(key, id), id == id1 || id == id2);
        ASSERT_EQ(KeyIsTouchedBy(key, id), IsBitSubset(id, id1) || IsBitSubset(id, id2));
        ASSERT_TRUE(KeyIsTouchedBy(key, 0));
    }
}

TEST(KeyBodyPair, NormalisesTheKeyAndKeepsTheOrderOfTheBodies) {
    CollisionBody nine(9, "nine");
    CollisionBody two(2, "two");
    const KeyBodyPair pair(&nine, &two);
    EXPECT_EQ(pair.Key(), 0x0000000200000009U);
    const IBodyPair& couple = pair;
    EXPECT_EQ(couple.First(), &nine);
    EXPECT_EQ(couple.Second(), &two);

    test::ForeignBody foreign(4);
    const KeyBodyPair half_foreign(&foreign, static_cast<ICollisionBody*>(&two));
    EXPECT_EQ(half_foreign.Key(), 0x0000000200000004U);
    EXPECT_EQ(half_foreign.First(), nullptr);
    EXPECT_EQ(half_foreign.Second(), &two);
}

}  // namespace
}  // namespace tarn::details
