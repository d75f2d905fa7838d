#include "ostrel/quarrix/event.h"

#include <algorithm>
#include <utility>

namespace Ostrel::Quarrix::Collisions {

Event::Event() : subscriptions_(std::make_shared<const Subscriptions>()) {}

Event::~Event() = default;

Event::Token Event::add(Handler handler) {
    // What is replaced goes after the lock: a handler's destructor may use the event.
    std::shared_ptr<const Subscriptions> replaced;
    const std::lock_guard lock(mutex_);
    auto subscriptions = std::make_shared<Subscriptions>();
    subscriptions->reserve(subscriptions_->size() + 1);
    subscriptions->assign(subscriptions_->begin(), subscriptions_->end());
    const Token token{last_token_ + 1};
    subscriptions->push_back({token, std::move(handler)});
    ++last_token_;
    replaced = std::exchange(subscriptions_, std::move(subscriptions));
    return token;
}

void Event::remove(Token token) {
    std::shared_ptr<const Subscriptions> replaced;
    const std::lock_guard lock(mutex_);
    if (std::ranges::find(*subscriptions_, token, &Subscription::token) == subscriptions_->end()) return;
    auto subscriptions = std::make_shared<Subscriptions>(*subscriptions_);
    std::erase_if(*subscriptions, [token](const Subscription& each) { return each.token == token; });
    replaced = std::exchange(subscriptions_, std::move(subscriptions));
}

void Event::raise(Object* sender) const {
    std::shared_ptr<const Subscriptions> subscriptions;
    {
        const std::lock_guard lock(mutex_);
        subscriptions = subscriptions_;
    }
    for (const Subscription& subscription : *subscriptions) subscription.handler(sender);
}

}  // namespace Ostrel::Quarrix::Collisions
