#include "ostrel/quarrix/event.h"

#include <algorithm>
#include <utility>

namespace Ostrel::Quarrix::Collisions {

Event::Event() = default;

Event::~Event() = default;

Event::Token Event::add(Handler handler) {
    return Append({{}, std::nullopt, std::move(handler)});
}

Event::Token Event::add(std::weak_ptr<const void> subscriber, Handler handler) {
    return Append({{}, std::move(subscriber), std::move(handler)});
}

Event::Token Event::Append(Subscription subscription) {
    // What is replaced goes after the lock: a handler's destructor may use the event.
    Subscriptions replaced;
    const std::lock_guard lock(mutex_);
    Subscriptions longer{std::make_shared<Subscription[]>(subscriptions_.count + 1),
                         subscriptions_.count + 1};
    Subscription* const last = std::ranges::copy(subscriptions_, longer.all.get()).out;
    subscription.token = Token{last_token_ + 1};
    *last = std::move(subscription);
    replaced = std::exchange(subscriptions_, std::move(longer));
    return Token{++last_token_};
}

void Event::remove(Token token) {
    Subscriptions replaced;
    const std::lock_guard lock(mutex_);
    if (std::ranges::find(subscriptions_, token, &Subscription::token) == subscriptions_.end()) return;
    Subscriptions shorter;
    if (subscriptions_.count > 1) {
        shorter = {std::make_shared<Subscription[]>(subscriptions_.count - 1), subscriptions_.count - 1};
        std::ranges::copy_if(subscriptions_, shorter.all.get(),
                             [token](const Subscription& each) { return each.token != token; });
    }
    replaced = std::exchange(subscriptions_, std::move(shorter));
}

void Event::raise(Object* sender) const {
    Subscriptions subscriptions;
    {
        const std::lock_guard lock(mutex_);
        subscriptions = subscriptions_;
    }
    for (const Subscription& each : subscriptions) {
        const std::shared_ptr<const void> alive = each.subscriber ? each.subscriber->lock() : nullptr;
        if (each.handler && (alive || !each.subscriber)) each.handler(sender);
    }
}

}  // namespace Ostrel::Quarrix::Collisions
