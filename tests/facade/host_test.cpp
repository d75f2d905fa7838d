#include "facade/part.h"
#include "ostrel/quarrix/event.h"
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
    // Every object is asked by all threads, which must agree.
    std::vector<Object> objects(5000);
    std::array<std::vector<std::uint32_t>, 4> words;
    std::barrier start(4);
    std::vector<std::thread> threads;
    threads.reserve(words.size());
    for (auto& each : words) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            for (const Object& object : objects)
                each.push_back(static_cast<std::uint32_t>(object.GetHashCode()));
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const auto& each : words) EXPECT_EQ(each, words[0]);
    EXPECT_TRUE(std::ranges::all_of(words[0], [](std::uint32_t word) { return std::popcount(word) == 16; }));
    std::ranges::sort(words[0]);
    EXPECT_TRUE(std::ranges::adjacent_find(words[0]) == words[0].end());
    const Object early;
    const Object late;
    const auto word_of_late = static_cast<std::uint32_t>(late.GetHashCode());
    EXPECT_GT(static_cast<std::uint32_t>(early.GetHashCode()), word_of_late) << "the first to ask is first";
    EXPECT_TRUE(early.Equals(&early));
    EXPECT_FALSE(early.Equals(&late) || early.Equals(nullptr));
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
    event.add(nullptr);
    event.raise(&sender);
    EXPECT_EQ(calls, "ab");
    event.remove(first);
    event.remove(first);
    event.remove(Event::Token{12345});
    event.raise(&sender);
    EXPECT_EQ(calls, "abc");

    event.add([](Object*) { throw KeyNotFoundException("from a handler"); });
    event.add([&calls](Object*) { calls += 'd'; });
    EXPECT_THROW(event.raise(nullptr), KeyNotFoundException);
    EXPECT_EQ(calls, "abcc") << "what a handler throws ends the round";
}

TEST(Event, KeepsASubscriberOnlyWhileItsHandlerRuns) {
    Event event;
    auto subscriber = std::make_shared<std::string>("subscriber");
    int calls = 0;
    event.add(subscriber, [&, raw = subscriber.get()](Object*) {
        subscriber.reset();
        EXPECT_EQ(*raw, "subscriber");
        ++calls;
    });
    event.raise(nullptr);
    event.raise(nullptr);
    EXPECT_EQ(calls, 1);
}

TEST(Event, LetsGoOfHandlersOutsideItsLockAndSurvivesItsEndInOne) {
    // The last copy of the handler goes when it is removed, and uses the event then.
    struct User {
        Event* event;
        ~User() { event->remove(event->add(nullptr)); }
    };
    auto event = std::make_unique<Event>();
    auto user = std::make_shared<User>(User{event.get()});
    const Event::Token token = event->add([user](Object*) {});
    user.reset();
    event->remove(token);
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
    EXPECT_EQ(SeenText(std::string("a\0b", 3)), std::string("text a\0b", 8));
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
    EXPECT_EQ(Seen({object}), "1:*");
    EXPECT_EQ(Seen({object, nullptr, std::shared_ptr<Base>(object)}), "3:*0*");
    EXPECT_EQ(Seen(std::vector<std::shared_ptr<Derived>>{object, nullptr}), "2:*0");
    EXPECT_EQ(Seen(std::vector<std::shared_ptr<Derived>>()), "0:");
    EXPECT_EQ(Seen(std::array<std::shared_ptr<Base>, 2>{nullptr, object}), "2:0*");
    static_assert(!std::is_constructible_v<Sequence<std::shared_ptr<Derived>>, Objects&>);
}

TEST(Exceptions, SayWhatHappenedToWhat) {
    EXPECT_EQ(ArgumentNullException("element").get_ParamName(), "element");
    EXPECT_STREQ(ArgumentNullException("x").what(), test::NullError("x").c_str());
    EXPECT_EQ(ArgumentNullException().get_ParamName(), "");
    const ArgumentOutOfRangeException range("clearance", "Value can not be negative");
    EXPECT_EQ(range.get_ParamName() + ": " + range.get_Message(), "clearance: Value can not be negative");
    EXPECT_EQ(ObjectDisposedException("").get_ObjectName(), "");
    EXPECT_STREQ(ObjectDisposedException("x").what(), "ObjectDisposedException (object 'x')");
    EXPECT_EQ(Exception().get_Message(), "");
    EXPECT_STREQ(IndexOutOfRangeException().what(), "IndexOutOfRangeException");
    EXPECT_STREQ(KeyNotFoundException("x").what(), "KeyNotFoundException: x");
    // The families by which callers catch.
    static_assert(std::is_base_of_v<ArgumentException, ArgumentNullException>);
    static_assert(std::is_base_of_v<ArgumentException, ArgumentOutOfRangeException>);
    static_assert(std::is_base_of_v<InvalidOperationException, ObjectDisposedException>);
    static_assert(std::is_base_of_v<std::exception, Exception>);
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions
