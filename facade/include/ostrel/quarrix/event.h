#pragma once

#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace Ostrel::Quarrix::Collisions {

/// Something that an object tells its subscribers. Safe from any thread.
class QUARRIX_API Event {
public:
    /// What is called with the object that raises the event.
    using Handler = std::function<void(Object* sender)>;
    /// Names a subscription of one event.
    enum class Token : std::uint64_t {};

    /// Without subscribers.
    Event();
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
    ~Event();

    /// Subscribes. What the handler holds lives until it is removed, so a handler should not own whoever
    /// owns the event. An empty handler is never called.
    Token add(Handler handler);
    /// Subscribes for as long as the subscriber lives, which is not owned but kept alive while the handler
    /// runs.
    Token add(std::weak_ptr<const void> subscriber, Handler handler);
    /// Ends a subscription; an unknown one is ignored. A call of the handler that is under way on another
    /// thread may still be running when this returns.
    void remove(Token token);
    /// Calls the handlers that are subscribed now, in the order of subscription, on the calling thread and
    /// without holding a lock: handlers may add and remove. What a handler throws ends the call.
    void raise(Object* sender) const;

private:
    struct Subscription {
        Token token{};
        std::optional<std::weak_ptr<const void>> subscriber;
        Handler handler;
    };
    /// A list that is never changed but replaced. Elements come by the thousand, each with its events: a list
    /// is one allocation, and none where nobody is subscribed.
    struct Subscriptions {
        std::shared_ptr<Subscription[]> all;
        std::size_t count = 0;

        const Subscription* begin() const { return all.get(); }
        const Subscription* end() const { return all.get() + count; }
    };

    QUARRIX_LOCAL Token Append(Subscription subscription);

    /// Guards the two fields below.
    mutable std::mutex mutex_;
    Subscriptions subscriptions_;
    std::uint64_t last_token_ = 0;
};

}  // namespace Ostrel::Quarrix::Collisions
