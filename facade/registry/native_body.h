#pragma once

#include "registry/native_collision_element_wrapper.h"

#include "tarn/collision_body.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// A body of the engine with the mesh that it refers to; the body goes first.
///
/// The registry's wrapper owns it, and so does every configuration that holds the body. So when the registry
/// gives up a body that a configuration still holds, the engine's configuration refers to live memory, and
/// the address stands for no other body, until the configuration has let go of it.
struct NativeBody {
    /// With its mesh, and without the body yet.
    explicit NativeBody(const ICollisionElement& element) : mesh(element) {}

    NativeCollisionElementWrapper mesh;
    std::unique_ptr<tarn::ICollisionBody> body;
};

}  // namespace Ostrel::Quarrix::Collisions
