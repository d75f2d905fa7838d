#pragma once

#include "core/vector3.h"

#include "tarn/matrix.h"
#include "tarn/triangle_data.h"

namespace tarn::details {

/// A triangle as elements and hierarchies store it: nine doubles, nothing more.
struct Triangle : TriangleData {
    /// Leaves the coordinates uninitialised.
    Triangle() = default;
    explicit Triangle(const TriangleData& data) : TriangleData(data) {}
};
static_assert(sizeof(Triangle) == 72);

inline Vector3 Vertex0(const TriangleData& triangle) {
    return {triangle.v0x, triangle.v0y, triangle.v0z};
}
inline Vector3 Vertex1(const TriangleData& triangle) {
    return {triangle.v1x, triangle.v1y, triangle.v1z};
}
inline Vector3 Vertex2(const TriangleData& triangle) {
    return {triangle.v2x, triangle.v2y, triangle.v2z};
}

/// Squared length, in squared length units, up to which an edge makes its triangle invalid.
inline constexpr double kInvalidEdgeLengthSquared = 1e-7;

/// Whether every edge is long enough. Collinear vertices far apart are valid; NaN is not.
inline bool IsValid(const TriangleData& triangle) {
    const Vector3 v0 = Vertex0(triangle);
    const Vector3 v1 = Vertex1(triangle);
    const Vector3 v2 = Vertex2(triangle);
    return LengthSquared(v1 - v0) > kInvalidEdgeLengthSquared &&
           LengthSquared(v2 - v0) > kInvalidEdgeLengthSquared &&
           LengthSquared(v2 - v1) > kInvalidEdgeLengthSquared;
}

/// One third as the centroid rule has it: this many digits, and a multiplication. Another form is another
/// tree.
inline constexpr double kOneThird = 0.3333333333333333;

inline Vector3 Centroid(const TriangleData& triangle) {
    return kOneThird * (Vertex0(triangle) + Vertex1(triangle) + Vertex2(triangle));
}

/// Local to world.
inline Vector3 Place(const MATRIX& placement, const Vector3& p) {
    const MATRIX& m = placement;
    return {m[0] * p.x + m[1] * p.y + m[2] * p.z + m[3], m[4] * p.x + m[5] * p.y + m[6] * p.z + m[7],
            m[8] * p.x + m[9] * p.y + m[10] * p.z + m[11]};
}

inline Triangle Place(const MATRIX& placement, const TriangleData& triangle) {
    const Vector3 v0 = Place(placement, Vertex0(triangle));
    const Vector3 v1 = Place(placement, Vertex1(triangle));
    const Vector3 v2 = Place(placement, Vertex2(triangle));
    return Triangle({v0.x, v0.y, v0.z, v1.x, v1.y, v1.z, v2.x, v2.y, v2.z});
}

}  // namespace tarn::details
