#pragma once

#include "core/plane.h"
#include "core/vector3.h"

#include "tarn/triangle_data.h"

namespace tarn::details {

/// Whether the segment from `from` to `to` crosses the triangle, all in one frame; ends and edges count, up
/// to a relative tolerance of 1e-12. `crossing` receives the point where the line meets the triangle's plane
/// as soon as that point is known to lie on the segment, even if it turns out to lie outside the triangle.
/// False for degenerate triangles and for segments parallel to the plane.
bool SegmentCrossesTriangle(const TriangleData& triangle,
                            const Vector3& from,
                            const Vector3& to,
                            Vector3& crossing);

/// Finds two points of the segment along which the triangles cross, trying the edges of `b` against `a`, then
/// those of `a` against `b`, each in vertex order. False, with the points unspecified, when the triangles do
/// not intersect or fewer than two edges yield a point. A crossing at a shared vertex counts once for each
/// edge.
bool IntersectingSegment(const TriangleData& a,
                         const Plane& plane_a,
                         const TriangleData& b,
                         const Plane& plane_b,
                         Vector3& first_point,
                         Vector3& second_point);

}  // namespace tarn::details
