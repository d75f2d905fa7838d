#pragma once

#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

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
    /// owns the event.
    Token add(Handler handler);
    /// Ends a subscription; an unknown one is ignored. A call of the handler that is under way on another
    /// thread may still be running when this returns.
    void remove(Token token);
    /// Calls the handlers that are subscribed now, in the order of subscription, on the calling thread and
    /// without holding a lock: handlers may add and remove. What a handler throws ends the call.
    void raise(Object* sender) const;

private:
    struct Subscription {
        Token token;
        Handler handler;
    };
    using Subscriptions = std::vector<Subscription>;

    /// Guards the two fields below; the list itself is never changed but replaced.
    mutable std::mutex mutex_;
    std::shared_ptr<const Subscriptions> subscriptions_;
    std::uint64_t last_token_ = 0;
};

}  // namespace Ostrel::Quarrix::Collisions
