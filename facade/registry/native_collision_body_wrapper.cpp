#include "registry/native_collision_body_wrapper.h"

#include "ostrel/quarrix/exceptions.h"
#include "registry/native_identifiers.h"

#include "tarn/factory.h"

#include <algorithm>
#include <utility>

namespace Ostrel::Quarrix::Collisions {

namespace {

/// Triangles in a leaf of a body's hierarchy, at most. Fixed here.
constexpr std::int16_t kLeafSize = 5;

tarn::MATRIX PlacementOf(const ICollisionElement& element) {
    const std::array<double, 16> position = element.get_Position();
    tarn::MATRIX placement;
    std::copy_n(position.begin(), std::size(placement.m), placement.m);
    return placement;
}

std::shared_ptr<NativeBody> MakeNativeBody(const ICollisionElement& element) {
    auto native = std::make_shared<NativeBody>(element);
    const std::shared_ptr<ICollisionElementOwner> owner = element.get_Owner();
    native->body =
        tarn::make_unique_body(NativeBodyId(element), NativeOwnerId(owner.get()), element.get_Name());
    native->body->AddElement(native->mesh.get_Element());
    native->body->SetLeafNumber(kLeafSize);
    return native;
}

}  // namespace

std::shared_ptr<NativeCollisionBodyWrapper> NativeCollisionBodyWrapper::Make(
    const std::shared_ptr<ICollisionConfigurationElement>& element) {
    auto with_mesh = std::dynamic_pointer_cast<ICollisionElement>(element);
    if (!with_mesh) throw ArgumentNullException();
    auto wrapper = std::make_shared<NativeCollisionBodyWrapper>(OnlyMake(), std::move(with_mesh));
    wrapper->Subscribe(wrapper);
    wrapper->Build();
    return wrapper;
}

NativeCollisionBodyWrapper::NativeCollisionBodyWrapper(OnlyMake /*key*/,
                                                       std::shared_ptr<ICollisionElement> element)
    : element_(std::move(element)) {}

/// The handlers do not own the wrapper: it owns the element, and the element owns its events.
void NativeCollisionBodyWrapper::Subscribe(const std::shared_ptr<NativeCollisionBodyWrapper>& self) {
    position_token_ =
        element_->get_PositionChanged().add(self, [this](Object* /*sender*/) { OnPositionChanged(); });
    shape_token_ = element_->get_CollisionElementChanged().add(
        self, [this](Object* /*sender*/) { OnCollisionElementChanged(); });
}

/// The events are followed already, so a change that comes while the element is read is not missed.
void NativeCollisionBodyWrapper::Build() {
    const std::shared_ptr<ICollisionElement> element = element_;
    std::shared_ptr<NativeBody> native = MakeNativeBody(*element);
    native->body->SetMatrix(PlacementOf(*element));
    bool has_moved = false;
    bool has_changed = false;
    {
        const std::lock_guard lock(lock_);
        native_ = std::move(native);
        has_moved = moves_.begun > 0;
        has_changed = reshapes_.begun > 0;
    }
    if (has_changed) {
        OnCollisionElementChanged();
    } else if (has_moved) {
        OnPositionChanged();
    }
}

bool NativeCollisionBodyWrapper::GiveUp() noexcept {
    // Declared before the lock, so that they go after it: last references may run the caller's code.
    std::shared_ptr<ICollisionElement> element;
    std::shared_ptr<NativeBody> native;
    {
        const std::lock_guard lock(lock_);
        if (disposed_) return false;
        disposed_ = true;
        element = std::move(element_);
        native = std::move(native_);
    }
    try {
        element->get_PositionChanged().remove(position_token_);
        element->get_CollisionElementChanged().remove(shape_token_);
    } catch (...) {
        // Memory ran out, or the element's code threw. What stays subscribed does nothing: it finds this
        // disposed.
    }
    return native.use_count() > 1;
}

bool NativeCollisionBodyWrapper::IsDisposed() const {
    const std::lock_guard lock(lock_);
    return disposed_;
}

std::shared_ptr<NativeBody> NativeCollisionBodyWrapper::Native() const {
    const std::lock_guard lock(lock_);
    return native_;
}

tarn::ICollisionBody* NativeCollisionBodyWrapper::get_Body() const {
    const std::shared_ptr<NativeBody> native = Native();
    if (!native) throw ObjectDisposedException("");
    return native->body.get();
}

void NativeCollisionBodyWrapper::OnPositionChanged() {
    std::shared_ptr<ICollisionElement> element;
    std::uint64_t turn = 0;
    {
        const std::lock_guard lock(lock_);
        if (disposed_) return;
        turn = ++moves_.begun;
        if (!native_) return;
        element = element_;
    }
    const tarn::MATRIX placement = PlacementOf(*element);
    const std::lock_guard lock(lock_);
    if (!disposed_ && moves_.Apply(turn)) native_->body->SetMatrix(placement);
}

void NativeCollisionBodyWrapper::OnCollisionElementChanged() {
    std::shared_ptr<ICollisionElement> element;
    std::uint64_t turn = 0;
    {
        const std::lock_guard lock(lock_);
        if (disposed_) return;
        turn = ++reshapes_.begun;
        if (!native_) return;
        element = element_;
    }
    NativeCollisionElementWrapper mesh(*element);
    {
        const std::lock_guard lock(lock_);
        if (disposed_ || !reshapes_.Apply(turn)) return;
        ExchangeMesh(mesh);
    }
    OnPositionChanged();
}

/// If the engine fails, the body is left with the old mesh and its hierarchy.
void NativeCollisionBodyWrapper::ExchangeMesh(NativeCollisionElementWrapper& mesh) {
    tarn::ICollisionBody& body = *native_->body;
    tarn::ICollisionElement* const old = native_->mesh.get_Element();
    body.RemoveElement(old);
    try {
        body.AddElement(mesh.get_Element());
        body.SetLeafNumber(kLeafSize);
    } catch (...) {
        body.RemoveElement(mesh.get_Element());
        body.AddElement(old);
        throw;
    }
    native_->mesh.Swap(mesh);
}

}  // namespace Ostrel::Quarrix::Collisions
