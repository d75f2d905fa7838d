#pragma once

#include "ostrel/quarrix/collision_configuration_element.h"
#include "ostrel/quarrix/export.h"

#include <array>
#include <functional>

namespace Ostrel::Quarrix::Collisions {

/// An element with a triangle mesh.
class QUARRIX_API ICollisionElement : public virtual ICollisionConfigurationElement {
public:
    /// x, y, z.
    using Vertex = std::array<double, 3>;
    /// Takes one triangle. The arrays may be reused for the next one.
    using TriangleCallback = std::function<void(const Vertex& v0, const Vertex& v1, const Vertex& v2)>;

    /// Calls `callback` once for each triangle, in the element's own coordinates.
    virtual void Load(const TriangleCallback& callback) const = 0;
};

}  // namespace Ostrel::Quarrix::Collisions
