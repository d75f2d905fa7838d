#pragma once

#include "core/plane.h"
#include "core/vector3.h"

#include "tarn/triangle_data.h"

namespace tarn::details {

/// Bound on the products of signed values below which a triangle counts as lying on the other's plane. Signed
/// values scale with the area of the plane's triangle, so small triangles (edges of about 0.01 units) fall
/// below it as a whole; deliberately.
inline constexpr double kOnPlaneProduct = 1e-12;

/// Whether two triangles in one frame intersect: the interval test of T. Moeller, "A Fast Triangle-Triangle
/// Intersection Test" (1997), in its division form, with an early exit of this system's own. Properties:
///  (1) Coplanar triangles do not intersect.
///  (2) A triangle whose first vertex lies on the other's plane (in the sense of `kOnPlaneProduct`), or whose
///      second and third do, does not intersect it, though it may cross it there. So the answer depends on
///      which vertex comes first.
///  (3) Otherwise the triangles intersect when the closed intervals that they cut from the line common to
///      both planes meet; a shared end point is enough.
///  (4) NaN coordinates exclude nothing.
///  (5) The order of the two triangles does not matter, that of their vertices does.
bool TrianglesIntersect(const TriangleData& a,
                        const Plane& plane_a,
                        const TriangleData& b,
                        const Plane& plane_b);

/// Whether two triangles of one plane overlap when projected along the largest component of `normal`, the
/// plane's normal. Touching edges count, a vertex on an edge only where edges meet.
bool CoplanarTrianglesIntersect(const Vector3& normal, const TriangleData& a, const TriangleData& b);

}  // namespace tarn::details
