#include "config/pair_key.h"

#include "config/body_pair.h"
#include "core/collision_body.h"
#include "support/foreign_classes.h"

#include "tarn/exception.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace tarn::details {
namespace {

TEST(PairKey, NamesACoupleWhateverTheOrder) {
    EXPECT_EQ(MakePairKey(7, 3), 0x0000000300000007U);
    EXPECT_EQ(MakePairKey(3, 7), 0x0000000300000007U);
    EXPECT_EQ(MakePairKey(0x80000000U, 0x7fffffffU), 0x7fffffff80000000U) << "identifiers are unsigned";
}

TEST(PairKey, ContainsByEqualityAndIsTouchedByBitSubset) {
    const auto is_subset = [](std::uint32_t part, std::uint32_t whole) { return (part | whole) == whole; };
    // All of few bits, at either end of the word.
    for (std::uint32_t i = 0; i < 1U << 15; ++i) {
        const auto identifier = [i](std::uint32_t at) { return (i >> at & 15U) << (i >> at & 16U ? 28 : 0); };
        const std::uint32_t id1 = identifier(0);
        const std::uint32_t id2 = identifier(5);
        const std::uint32_t id = identifier(10);
        const PairKey key = MakePairKey(id1, id2);
        ASSERT_EQ(KeyContains(key, id), id == id1 || id == id2) << i;
        ASSERT_EQ(KeyIsTouchedBy(key, id), is_subset(id, id1) || is_subset(id, id2)) << i;
    }
}

TEST(KeyBodyPair, NormalisesTheKeyAndKeepsTheOrderOfTheBodies) {
    CollisionBody nine(9, "nine");
    CollisionBody two(2, "two");
    const KeyBodyPair pair(&nine, &two);
    EXPECT_EQ(pair.Key(), 0x0000000200000009U);
    EXPECT_EQ(pair.First(), &nine);
    EXPECT_EQ(pair.Second(), &two);

    test::ForeignBody foreign(4);
    ICollisionBody* const own = &two;
    const KeyBodyPair half_foreign(&foreign, own);
    EXPECT_EQ(half_foreign.Key(), 0x0000000200000004U);
    EXPECT_EQ(half_foreign.First(), nullptr);
    EXPECT_EQ(half_foreign.Second(), &two);
    EXPECT_THROW(KeyBodyPair(own, nullptr), NullPointerException);
}

}  // namespace
}  // namespace tarn::details
