#pragma once

#include "core/triangle.h"
#include "core/vector3.h"

namespace tarn::details {

/// A triangle as the set of points base + s edge0 + t edge1 with s >= 0, t >= 0, s + t <= 1.
struct EdgeForm {
    Vector3 base;
    Vector3 edge0;
    Vector3 edge1;

    EdgeForm(const Vector3& base_point, const Vector3& first_edge, const Vector3& second_edge)
        : base(base_point),
          edge0(first_edge),
          edge1(second_edge) {}
    explicit EdgeForm(const TriangleData& triangle)
        : EdgeForm(Vertex0(triangle),
                   Vertex1(triangle) - Vertex0(triangle),
                   Vertex2(triangle) - Vertex0(triangle)) {}

    Vector3 PointAt(double s, double t) const { return base + s * edge0 + t * edge1; }
};

struct SegmentDistance {
    double distance_squared;
    double t;  ///< the closest point is origin + t direction, 0 <= t <= 1
};

/// From a point to the segment from `origin` to `origin + direction`.
SegmentDistance PointSegmentDistance(const Vector3& point, const Vector3& origin, const Vector3& direction);

struct TriangleDistance {
    double distance_squared;
    double s;  ///< the closest point is base + s edge0 + t edge1
    double t;
};

/// From a point to a triangle: the region method of D. Eberly, "Distance Between Point and Triangle in 3D"
/// (1999), with a negative rounding result set to 0. For a triangle of some area it is exact up to rounding,
/// which cancels: the result can lie a little below the squared distance of the points that it names. For
/// collinear vertices it can be NaN or lie far above the true distance, never below.
TriangleDistance PointTriangleDistance(const Vector3& point, const EdgeForm& triangle);

struct SegmentTriangleDistance {
    double distance_squared;
    double u;  ///< on the segment: origin + u direction
    double s;  ///< on the triangle: base + s edge0 + t edge1
    double t;
};

/// From a segment to a triangle by alternating projections: at most five rounds, and no further once a round
/// gains no more than 0.01. So the result bounds the true squared distance from above (up to rounding) and
/// need not reach it.
SegmentTriangleDistance SegmentTriangleDistanceBound(const Vector3& origin,
                                                     const Vector3& direction,
                                                     const EdgeForm& triangle);

struct TrianglePairDistance {
    double distance_squared;
    double s1;  ///< on the first triangle: base + s1 edge0 + t1 edge1
    double t1;
    double s2;  ///< on the second triangle, likewise
    double t2;
};

/// Between two triangles by alternating projections from the base of the second, in the same number of
/// rounds. The result bounds the true squared distance from above (up to rounding) and need not reach it;
/// speed is bought with that, deliberately. Not symmetric: the triangles are not interchangeable.
TrianglePairDistance TrianglePairDistanceBound(const EdgeForm& first, const EdgeForm& second);

}  // namespace tarn::details
