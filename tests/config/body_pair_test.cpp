#include "config/body_pair.h"

#include "support/foreign_classes.h"

#include "tarn/exception.h"

#include <gtest/gtest.h>

namespace tarn::details {
namespace {

TEST(KeyBodyPair, NormalisesTheKeyAndKeepsTheOrderOfTheBodies) {
    CollisionBody nine(9, "nine");
    CollisionBody two(2, "two");
    const KeyBodyPair pair(&nine, &two);
    EXPECT_EQ(pair.Key(), 0x0000000200000009U);
    EXPECT_EQ(pair.First(), &nine);
    EXPECT_EQ(pair.Second(), &two);

    test::ForeignBody foreign(0xfffffff4U);
    ICollisionBody* const own = &two;
    const KeyBodyPair half_foreign(&foreign, own);
    EXPECT_EQ(half_foreign.Key(), 0x00000002fffffff4U) << "identifiers are unsigned";
    EXPECT_EQ(half_foreign.First(), nullptr);
    EXPECT_EQ(half_foreign.Second(), &two);
    EXPECT_THROW(KeyBodyPair(own, nullptr), NullPointerException);
}

}  // namespace
}  // namespace tarn::details
