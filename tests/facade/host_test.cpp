#include "ostrel/quarrix/event.h"
#include "ostrel/quarrix/exceptions.h"
#include "ostrel/quarrix/object.h"
#include "ostrel/quarrix/sequence.h"
#include "ostrel/quarrix/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <barrier>
#include <bit>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace Ostrel::Quarrix::Collisions {
namespace {

TEST(Object, DrawsAWordOfItsOwnWithSixteenBitsOnFirstRequest) {
    constexpr int kThreads = 4;
    constexpr std::size_t kObjects = 5000;
    // Every object is asked by all threads, which must agree.
    std::vector<Object> objects(kObjects);
    std::vector<std::vector<std::uint32_t>> words(kThreads);
    std::barrier start(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < words.size(); ++t) {
        threads.emplace_back([&, t] {
            start.arrive_and_wait();
            for (const Object& object : objects)
                words[t].push_back(static_cast<std::uint32_t>(object.GetHashCode()));
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const auto& each : words) EXPECT_EQ(each, words[0]);
    EXPECT_TRUE(std::ranges::all_of(words[0], [](std::uint32_t word) { return std::popcount(word) == 16; }));
    std::ranges::sort(words[0]);
    EXPECT_TRUE(std::ranges::adjacent_find(words[0]) == words[0].end());
    // No other object that lives has drawn any word between two that were drawn one after the other.
    const Object early;
    const Object late;
    const auto word_of_late = static_cast<std::uint32_t>(late.GetHashCode());
    EXPECT_GT(static_cast<std::uint32_t>(early.GetHashCode()), word_of_late) << "the first to ask is first";
}

TEST(Object, IsEqualToItselfAlone) {
    const Object object;
    const Object other;
    EXPECT_TRUE(object.Equals(&object));
    EXPECT_FALSE(object.Equals(&other));
    EXPECT_FALSE(object.Equals(nullptr));
}

TEST(Event, RaisesWhoIsSubscribedAtTheTimeInOrder) {
    Event event;
    Object sender;
    std::string calls;
    Event::Token second{};
    const Event::Token first = event.add([&](Object* from) {
        EXPECT_EQ(from, &sender);
        calls += 'a';
        // Neither change shows in this round.
        event.remove(second);
        event.add([&calls](Object*) { calls += 'c'; });
    });
    second = event.add([&calls](Object*) { calls += 'b'; });
    event.raise(&sender);
    EXPECT_EQ(calls, "ab");
    event.remove(first);
    event.remove(first);
    event.remove(Event::Token{12345});
    calls.clear();
    event.raise(&sender);
    EXPECT_EQ(calls, "c");

    event.add([](Object*) { throw KeyNotFoundException("from a handler"); });
    event.add([&calls](Object*) { calls += 'd'; });
    EXPECT_THROW(event.raise(nullptr), KeyNotFoundException);
    EXPECT_EQ(calls, "cc") << "what a handler throws ends the round";
}

TEST(Event, LetsGoOfAHandlerOutsideItsLock) {
    // The last copy of the handler goes when it is removed, and uses the event then.
    struct User {
        Event* event;
        ~User() { event->remove(event->add(nullptr)); }
    };
    Event event;
    auto user = std::make_shared<User>(User{&event});
    const Event::Token token = event.add([user](Object*) {});
    user.reset();
    event.remove(token);
}

TEST(Event, SurvivesItsOwnEndInAHandler) {
    auto event = std::make_unique<Event>();
    int calls = 0;
    event->add([&](Object*) { event.reset(); });
    event->add([&](Object*) { ++calls; });
    event->raise(nullptr);
    EXPECT_EQ(calls, 1);
}

std::string SeenText(Text text) {
    return text.IsNull() ? "null" : "text " + text.ToString();
}

TEST(Text, IsNullOnlyForNull) {
    EXPECT_EQ(SeenText(nullptr), "null");
    EXPECT_EQ(SeenText(static_cast<const char*>(nullptr)), "null");
    EXPECT_EQ(SeenText(""), "text ");
    EXPECT_EQ(SeenText(std::string_view()), "text ");
    EXPECT_EQ(SeenText("literal"), "text literal");
    EXPECT_EQ(SeenText(std::string("a\0b", 3)), std::string("text a\0b", 8));
    EXPECT_EQ(SeenText(std::string("x")), "text x");
    EXPECT_TRUE(Text(nullptr).View().empty());
}

struct Base : Object {};
struct Derived : Base {};
using Objects = std::vector<std::shared_ptr<Object>>;

/// "null", or what is in it.
std::string Seen(Sequence<std::shared_ptr<Object>> sequence) {
    if (sequence.IsNull()) return "null";
    std::string text = std::to_string(sequence.size()) + ":";
    for (const auto& object : sequence.ToVector()) text += object ? '*' : '0';
    return text;
}

TEST(Sequence, MeansWhatAReaderExpects) {
    const auto object = std::make_shared<Derived>();
    EXPECT_EQ(Seen(nullptr), "null");
    EXPECT_EQ(Seen({}), "0:");
    EXPECT_EQ(Seen({nullptr}), "1:0");
    EXPECT_EQ(Seen({nullptr, nullptr}), "2:00");
    EXPECT_EQ(Seen({object}), "1:*");
    EXPECT_EQ(Seen({object, nullptr, std::shared_ptr<Base>(object)}), "3:*0*");
    EXPECT_EQ(Seen(std::vector<std::shared_ptr<Derived>>{object, nullptr}), "2:*0");
    EXPECT_EQ(Seen(std::vector<std::shared_ptr<Derived>>()), "0:");
    EXPECT_EQ(Seen(Objects{object}), "1:*");
    EXPECT_EQ(Seen(std::array<std::shared_ptr<Base>, 2>{nullptr, object}), "2:0*");
    static_assert(!std::is_constructible_v<Sequence<std::shared_ptr<Derived>>, Objects&>);
    const Sequence<double> numbers{1.0, 2.5};
    EXPECT_EQ(numbers.size(), 2U);
}

TEST(Exceptions, SayWhatHappenedToWhat) {
    const ArgumentNullException null("element");
    EXPECT_EQ(null.get_ParamName(), "element");
    EXPECT_STREQ(null.what(), "ArgumentNullException: Value can not be null (parameter 'element')");
    EXPECT_EQ(ArgumentNullException().get_ParamName(), "");
    const ArgumentOutOfRangeException range("clearance", "Value can not be negative");
    EXPECT_EQ(range.get_ParamName(), "clearance");
    EXPECT_EQ(range.get_Message(), "Value can not be negative");
    const ObjectDisposedException disposed("");
    EXPECT_EQ(disposed.get_ObjectName(), "");
    EXPECT_STREQ(disposed.what(), "ObjectDisposedException");
    EXPECT_STREQ(ObjectDisposedException("x").what(), "ObjectDisposedException (object 'x')");
    EXPECT_STREQ(Exception().what(), "Exception");
    EXPECT_EQ(Exception().get_Message(), "");
    EXPECT_STREQ(Exception("text").what(), "Exception: text");
    EXPECT_STREQ(NotImplementedException().what(), "NotImplementedException");
    EXPECT_STREQ(InvalidCastException("x").what(), "InvalidCastException: x");
    EXPECT_STREQ(NullReferenceException().what(), "NullReferenceException");
    EXPECT_STREQ(IndexOutOfRangeException().what(), "IndexOutOfRangeException");
    EXPECT_STREQ(KeyNotFoundException().what(), "KeyNotFoundException");
    EXPECT_STREQ(InvalidOperationException("x").what(), "InvalidOperationException: x");
    // The families by which callers catch.
    static_assert(std::is_base_of_v<ArgumentException, ArgumentNullException>);
    static_assert(std::is_base_of_v<ArgumentException, ArgumentOutOfRangeException>);
    static_assert(std::is_base_of_v<InvalidOperationException, ObjectDisposedException>);
    static_assert(!std::is_base_of_v<ArgumentException, NullReferenceException>);
    static_assert(std::is_base_of_v<std::exception, Exception>);
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions
