#pragma once

#include "ostrel/quarrix/collision_element.h"
#include "ostrel/quarrix/disposable.h"

#include "tarn/collision_element.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// Owns the engine's mesh of an element: its name and its triangles as it hands them over when this is made.
class NativeCollisionElementWrapper final : public IDisposable {
public:
    /// Calls the element: no lock of a body may be held.
    explicit NativeCollisionElementWrapper(const ICollisionElement& element);

    /// Destroys the mesh.
    void Dispose() override { element_.reset(); }
    /// Null after disposal.
    tarn::ICollisionElement* get_Element() const { return element_.get(); }

    /// Exchanges the meshes.
    void Swap(NativeCollisionElementWrapper& other) noexcept { element_.swap(other.element_); }

private:
    std::unique_ptr<tarn::ICollisionElement> element_;
};

}  // namespace Ostrel::Quarrix::Collisions
