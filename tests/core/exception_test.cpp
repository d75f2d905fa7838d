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
    EXPECT_EQ(Class("M", "A").displayText(), name + ": M: A");
    EXPECT_EQ(Class("M", "").message(), "M");

    auto original = std::make_unique<Class>("outer", OutOfMemoryException("inner"));
    const Exception* const nested_in_original = original->nested();
    const auto expect_copy = [&](const Exception& copy) {
        EXPECT_EQ(typeid(copy), typeid(Class));
        EXPECT_EQ(copy.what(), name);
        EXPECT_EQ(copy.displayText(), name + ": outer");
        ASSERT_NE(copy.nested(), nullptr);
        EXPECT_NE(copy.nested(), nested_in_original) << "a copy owns its own";
        EXPECT_EQ(copy.nested()->displayText(), "OutOfMemoryException: inner");
    };
    const Exception& as_root = *original;
    const std::unique_ptr<Exception> clone(as_root.clone());
    Class assigned("before", LogicException("before"));
    assigned = *original;
    try {
        as_root.rethrow();
    } catch (const Base& caught) {
        EXPECT_NE(&caught, original.get()) << "a copy is thrown";
        expect_copy(dynamic_cast<const Exception&>(caught));
    }
    original.reset();
    expect_copy(*clone);
    expect_copy(assigned);

    Class moved;
    moved = std::move(assigned);
    expect_copy(moved);
    // NOLINTNEXTLINE(bugprone-use-after-move): what a move leaves behind is promised.
    EXPECT_EQ(assigned.displayText(), name);
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
    static_assert(!std::is_base_of_v<RuntimeException, LogicException>);
}

TEST(Exception, SeparatesTextsOnlyWhereThereAreTwo) {
    EXPECT_EQ(LogicException("", "A").message(), ": A") << "the constructor looks at the argument alone";
    RuntimeException exception;
    for (const char* argument : {"", "A", "", "B"}) exception.extendedMessage(argument);
    exception.extendedMessage(exception.message());
    EXPECT_EQ(exception.displayText(), "RuntimeException: A: B: A: B");
}

TEST(Exception, MayBeAssignedItselfOrWhatIsNestedInIt) {
    const LogicException chain("outer", RuntimeException("middle", BadCastException("inner")));
    const auto expect_texts = [](const Exception& exception, const char* text, const char* nested) {
        EXPECT_EQ(exception.displayText(), text);
        ASSERT_NE(exception.nested(), nullptr);
        EXPECT_EQ(exception.nested()->displayText(), nested);
    };
    Exception copied(chain);
    const Exception& same = copied;
    copied = same;
    expect_texts(copied, "Exception: outer", "RuntimeException: middle");
    copied = *copied.nested();
    expect_texts(copied, "Exception: middle", "BadCastException: inner");
    Exception moved(chain);
    moved = std::move(const_cast<Exception&>(*moved.nested()));
    expect_texts(moved, "Exception: middle", "BadCastException: inner");
    copied = Exception();
    EXPECT_EQ(copied.nested(), nullptr);
}

TEST(Version, IsOneLineOfText) {
    EXPECT_EQ(GetVersionText(), "Tarn v0.4.0.0\n");
}

}  // namespace
}  // namespace tarn
