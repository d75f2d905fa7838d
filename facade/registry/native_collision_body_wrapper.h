#pragma once

#include "ostrel/quarrix/collision_element.h"
#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/event.h"
#include "registry/native_body.h"

#include "tarn/matrix.h"

#include <cstdint>
#include <memory>
#include <mutex>

namespace Ostrel::Quarrix::Collisions {

/// Keeps the engine's body of one element in step with the element, whose events it follows.
///
/// Locks: one of its own guards what the event handlers and the disposal share. The element is called only
/// without it, so that a caller's code, which may use the object model, never runs under it. Where the
/// registry's lock is held, too, that one was taken first.
class NativeCollisionBodyWrapper final : public IDisposable {
    /// Keeps the constructor to `Make`, though it is public for one allocation with the counters.
    struct OnlyMake {
        explicit OnlyMake() = default;
    };

public:
    /// Subscribes to the events, builds mesh, body and hierarchy, applies the position. The use count is 1.
    /// Throws `ArgumentNullException`, without a parameter name, for an element without a mesh.
    static std::shared_ptr<NativeCollisionBodyWrapper> Make(
        const std::shared_ptr<ICollisionConfigurationElement>& element);
    NativeCollisionBodyWrapper(OnlyMake key, std::shared_ptr<ICollisionElement> element);
    ~NativeCollisionBodyWrapper() override { GiveUp(); }

    /// Ends the subscriptions and gives the body up.
    void Dispose() override { GiveUp(); }
    /// The same. Returns whether somebody else still holds the body.
    bool GiveUp() noexcept;
    bool IsDisposed() const;

    /// Throws `ObjectDisposedException` with an empty object name after disposal.
    tarn::ICollisionBody* get_Body() const;
    /// The body for whoever holds it; null after disposal.
    std::shared_ptr<NativeBody> Native() const;

    /// Plain numbers, which the registry's lock guards.
    void IncrementRefCount() { ++ref_count_; }
    void DecrementRefCount() { --ref_count_; }
    std::int32_t RefCount() const { return ref_count_; }

private:
    /// Which of several runs of a handler at the same time is newer: the state that it reads from the element
    /// is newer, too.
    struct Turns {
        std::uint64_t begun = 0;
        std::uint64_t applied = 0;

        /// Whether what was read in a turn is still news. Then it counts as applied.
        bool Apply(std::uint64_t turn) {
            if (turn <= applied) return false;
            applied = turn;
            return true;
        }
    };

    void Subscribe(const std::shared_ptr<NativeCollisionBodyWrapper>& self);
    void Build();
    void OnPositionChanged();
    void OnCollisionElementChanged();
    void ExchangeMesh(NativeCollisionElementWrapper& mesh);

    mutable std::mutex lock_;
    bool disposed_ = false;
    std::shared_ptr<ICollisionElement> element_;
    /// Null until it is built, and after disposal.
    std::shared_ptr<NativeBody> native_;
    Turns moves_;
    Turns reshapes_;
    Event::Token position_token_{};
    Event::Token shape_token_{};
    std::int32_t ref_count_ = 1;
};

}  // namespace Ostrel::Quarrix::Collisions
