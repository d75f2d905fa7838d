#include "core/triangle_crossing.h"

#include "core/triangle.h"
#include "core/triangle_intersection.h"

#include "tarn/triangle_segments.h"

#include <cmath>

namespace tarn::details {

namespace {

/// Squared length of an unnormalised normal, in length units to the fourth, below which it counts as zero.
constexpr double kZeroNormalSquared = 1e-24;
/// A unit normal is 1 long or, for a degenerate triangle, 0: anything between tells the two apart.
constexpr double kDegenerateUnitNormalSquared = 1e-5;
/// Height difference, in length units, of the ends of a segment that counts as parallel to the plane.
constexpr double kParallelHeight = 1e-5;
/// Bounds of the parameters along a segment and inside a triangle, both inclusive.
constexpr double kParameterMin = -1e-12;
constexpr double kParameterMax = 1.000000000001;

Vector3 UnitNormal(const TriangleData& triangle) {
    const Vector3 normal = Normal(triangle);
    const double length_squared = LengthSquared(normal);
    if (length_squared < kZeroNormalSquared) return {0.0, 0.0, 0.0};
    const double length = std::sqrt(length_squared);
    return {normal.x / length, normal.y / length, normal.z / length};
}

/// Whether a point of the triangle's plane lies in the triangle, by its barycentric coordinates.
bool IsInside(const TriangleData& triangle, const Vector3& point) {
    const Vector3 u = Vertex1(triangle) - Vertex0(triangle);
    const Vector3 v = Vertex2(triangle) - Vertex0(triangle);
    const Vector3 w = point - Vertex0(triangle);
    const double uv = Dot(u, v);
    const double uu = Dot(u, u);
    const double vv = Dot(v, v);
    const double wu = Dot(w, u);
    const double wv = Dot(w, v);
    const double denominator = uv * uv - uu * vv;
    const double s = (uv * wv - vv * wu) / denominator;
    if (s < kParameterMin || s > kParameterMax) return false;
    const double t = (uv * wu - uu * wv) / denominator;
    if (t < kParameterMin) return false;
    return !(s + t > kParameterMax);
}

/// Collects the first two crossings. Each candidate is written to the slot that is free next.
class CrossingPair {
public:
    CrossingPair(Vector3& first, Vector3& second) : slots_{&first, &second} {}

    /// Tries the three edges of `edges` against `triangle`. True as soon as both crossings are there.
    bool TryEdges(const TriangleData& edges, const TriangleData& triangle) {
        const Vector3 v0 = Vertex0(edges);
        const Vector3 v1 = Vertex1(edges);
        const Vector3 v2 = Vertex2(edges);
        return TryEdge(triangle, v0, v1) || TryEdge(triangle, v1, v2) || TryEdge(triangle, v2, v0);
    }

private:
    bool TryEdge(const TriangleData& triangle, const Vector3& from, const Vector3& to) {
        if (SegmentCrossesTriangle(triangle, from, to, *slots_[count_])) ++count_;
        return count_ == 2;
    }

    Vector3* slots_[2];
    int count_ = 0;
};

}  // namespace

bool SegmentCrossesTriangle(const TriangleData& triangle,
                            const Vector3& from,
                            const Vector3& to,
                            Vector3& crossing) {
    const Vector3 normal = UnitNormal(triangle);
    if (LengthSquared(normal) < kDegenerateUnitNormalSquared) return false;
    const Vector3 direction = to - from;
    const double height = Dot(normal, direction);
    if (std::abs(height) < kParallelHeight) return false;
    const double r = Dot(normal, Vertex0(triangle) - from) / height;
    if (!(kParameterMin <= r && r <= kParameterMax)) return false;
    crossing = from + r * direction;
    return IsInside(triangle, crossing);
}

bool IntersectingSegment(const TriangleData& a,
                         const Plane& plane_a,
                         const TriangleData& b,
                         const Plane& plane_b,
                         Vector3& first_point,
                         Vector3& second_point) {
    if (!TrianglesIntersect(a, plane_a, b, plane_b)) return false;
    CrossingPair crossings(first_point, second_point);
    return crossings.TryEdges(b, a) || crossings.TryEdges(a, b);
}

}  // namespace tarn::details

namespace tarn {

namespace {

SegmentData SegmentBetween(const details::Vector3& p1, const details::Vector3& p2) {
    return {p1.x, p1.y, p1.z, p2.x, p2.y, p2.z};
}

}  // namespace

std::pair<bool, SegmentData> ComputeIntersectingSegment(const TriangleData& first,
                                                        const TriangleData& second) {
    details::Vector3 p1{};
    details::Vector3 p2{};
    const bool found = details::IntersectingSegment(first, details::PlaneOf(first), second,
                                                    details::PlaneOf(second), p1, p2);
    return {found, SegmentBetween(p1, p2)};
}

SegmentData ComputeCentroidSegment(const TriangleData& first, const TriangleData& second) {
    return SegmentBetween(details::Centroid(first), details::Centroid(second));
}

}  // namespace tarn
