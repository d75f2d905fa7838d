#include "tarn/exception.h"

#include "tarn/version.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace tarn {
namespace {

/// What must hold for every class: identity survives `clone` and `rethrow` through the root, handlers for the
/// base catch it, and every copy owns what is nested in it.
template <typename Class, typename Base>
void ExpectFamilyMember(const std::string& name) {
    SCOPED_TRACE(name);
    static_assert(std::is_base_of_v<Base, Class>);
    EXPECT_EQ(Class().displayText(), name);
    EXPECT_EQ(Class("M").displayText(), name + ": M");
    EXPECT_EQ(Class("M", "A").message(), "M: A");
    EXPECT_EQ(Class("M", "").message(), "M");
    EXPECT_EQ(Class().nested(), nullptr);

    auto original = std::make_unique<Class>("outer", OutOfMemoryException("inner"));
    const auto expect_copy = [&](const Exception& copy) {
        EXPECT_EQ(typeid(copy), typeid(Class));
        EXPECT_EQ(copy.what(), name);
        EXPECT_EQ(copy.name(), name);
        EXPECT_EQ(copy.message(), "outer");
        ASSERT_NE(copy.nested(), nullptr);
        const Exception& nested = *copy.nested();
        EXPECT_EQ(typeid(nested), typeid(OutOfMemoryException));
        EXPECT_EQ(nested.displayText(), "OutOfMemoryException: inner");
        if (original && &copy != original.get()) {
            EXPECT_NE(copy.nested(), original->nested()) << "a copy owns its own";
        }
    };
    const Exception& as_root = *original;
    expect_copy(*original);
    const std::unique_ptr<Exception> clone(as_root.clone());
    const Class copy(*original);
    Class assigned("before", LogicException("before"));
    assigned = *original;
    try {
        as_root.rethrow();
    } catch (const Base& caught) {
        const auto& thrown = dynamic_cast<const Exception&>(caught);
        EXPECT_NE(&thrown, &as_root) << "a copy is thrown";
        expect_copy(thrown);
    }
    original.reset();
    expect_copy(*clone);
    expect_copy(copy);
    expect_copy(assigned);

    Class moved;
    moved = std::move(assigned);
    expect_copy(moved);
    // NOLINTNEXTLINE(bugprone-use-after-move): what a move leaves behind is promised.
    EXPECT_TRUE(assigned.message().empty());
    EXPECT_EQ(assigned.nested(), nullptr);
}

TEST(Exception, EveryClassKeepsItsIdentityAndOwnsWhatIsNested) {
    ExpectFamilyMember<Exception, std::exception>("Exception");
    ExpectFamilyMember<LogicException, Exception>("LogicException");
    ExpectFamilyMember<NullPointerException, LogicException>("NullPointerException");
    ExpectFamilyMember<InvalidArgumentException, LogicException>("InvalidArgumentException");
    ExpectFamilyMember<InconsistentDataException, LogicException>("InconsistentDataException");
    ExpectFamilyMember<DivisionbyZeroException, LogicException>("DivisionbyZeroException");
    ExpectFamilyMember<RuntimeException, Exception>("RuntimeException");
    ExpectFamilyMember<OutOfMemoryException, RuntimeException>("OutOfMemoryException");
    ExpectFamilyMember<BadCastException, RuntimeException>("BadCastException");
    static_assert(!std::is_base_of_v<LogicException, RuntimeException>);
    static_assert(!std::is_base_of_v<LogicException, BadCastException>);
    static_assert(!std::is_base_of_v<RuntimeException, NullPointerException>);
}

TEST(Exception, SeparatesTextsOnlyWhereThereAreTwo) {
    EXPECT_EQ(LogicException("", "A").message(), ": A") << "the constructor looks at the argument alone";
    RuntimeException exception;
    exception.extendedMessage("");
    EXPECT_EQ(exception.message(), "");
    exception.extendedMessage("A");
    EXPECT_EQ(exception.message(), "A");
    exception.extendedMessage("");
    exception.extendedMessage("B");
    EXPECT_EQ(exception.message(), "A: B");
    EXPECT_EQ(exception.displayText(), "RuntimeException: A: B");
    EXPECT_STREQ(exception.what(), "RuntimeException");
}

TEST(Exception, MayBeAssignedItselfOrWhatIsNestedInIt) {
    const auto chain = [] {
        return LogicException("outer", RuntimeException("middle", BadCastException("inner")));
    };
    LogicException self = chain();
    const Exception& same = self;
    static_cast<Exception&>(self) = same;
    EXPECT_EQ(self.message(), "outer");
    ASSERT_NE(self.nested(), nullptr);
    EXPECT_EQ(self.nested()->displayText(), "RuntimeException: middle");

    Exception copied(chain());
    copied = *copied.nested();
    EXPECT_EQ(copied.displayText(), "Exception: middle");
    ASSERT_NE(copied.nested(), nullptr);
    EXPECT_EQ(copied.nested()->displayText(), "BadCastException: inner");

    Exception moved(chain());
    moved = std::move(const_cast<Exception&>(*moved.nested()));
    EXPECT_EQ(moved.displayText(), "Exception: middle");
    ASSERT_NE(moved.nested(), nullptr);
    EXPECT_EQ(moved.nested()->displayText(), "BadCastException: inner");

    copied = Exception();
    EXPECT_EQ(copied.displayText(), "Exception");
    EXPECT_EQ(copied.nested(), nullptr);
}

TEST(Version, IsOneLineOfText) {
    EXPECT_EQ(GetVersionText(), "Tarn v0.4.0.0\n");
}

}  // namespace
}  // namespace tarn
