#pragma once

#include "core/triangle.h"
#include "core/vector3.h"

namespace tarn::details {

/// The plane of a triangle: normal = (V1 - V0) x (V2 - V0), not normalised, and d = -(normal . V0).
struct Plane {
    Vector3 normal;
    double d;
};

inline Vector3 Normal(const TriangleData& triangle) {
    const Vector3 v0 = Vertex0(triangle);
    return Cross(Vertex1(triangle) - v0, Vertex2(triangle) - v0);
}

inline Plane PlaneOf(const TriangleData& triangle) {
    const Vector3 normal = Normal(triangle);
    return {normal, -Dot(normal, Vertex0(triangle))};
}

/// The distance of a point from the plane times the length of the normal, which is twice the triangle's area.
inline double SignedValue(const Plane& plane, const Vector3& point) {
    return Dot(plane.normal, point) + plane.d;
}

}  // namespace tarn::details
