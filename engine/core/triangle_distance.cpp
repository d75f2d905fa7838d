#include "core/triangle_distance.h"

#include <cmath>

namespace tarn::details {

namespace {

/// Alternating projections end after this many rounds, or once both distances of a round differ by no more
/// than this, in squared length units.
constexpr int kMaxRounds = 5;
constexpr double kRoundGain = 0.01;
/// Scalar triple product of a triangle's edges and a segment up to which the segment counts as parallel to
/// the triangle.
constexpr double kParallelTripleProduct = 0.001;

/// The squared distance of a point from the triangle's point (s, t), as a quadratic form in s and t, and its
/// minimum over each edge and the inside. The letters are those of the published method.
class DistanceForm {
public:
    DistanceForm(const Vector3& point, const EdgeForm& triangle) {
        const Vector3 difference = triangle.base - point;
        a_ = Dot(triangle.edge0, triangle.edge0);
        b_ = Dot(triangle.edge0, triangle.edge1);
        c_ = Dot(triangle.edge1, triangle.edge1);
        d_ = Dot(triangle.edge0, difference);
        e_ = Dot(triangle.edge1, difference);
        f_ = Dot(difference, difference);
    }

    TriangleDistance Minimum() const {
        const double determinant = std::abs(a_ * c_ - b_ * b_);
        const double s = b_ * e_ - c_ * d_;
        const double t = b_ * d_ - a_ * e_;
        if (s + t <= determinant) {
            if (s < 0.0) {
                if (t < 0.0 && d_ < 0.0) return OnEdge0();  // region 4, towards edge 0
                return OnEdge1();                           // region 4 or 3
            }
            if (t < 0.0) return OnEdge0();  // region 5
            const double inverse = 1.0 / determinant;
            return Inside(s * inverse, t * inverse);  // region 0
        }
        if (s < 0.0) return InRegion2();
        if (t < 0.0) return InRegion6();
        return OnEdge2(c_ + e_ - b_ - d_);  // region 1
    }

private:
    TriangleDistance AtVertex0() const { return {f_, 0.0, 0.0}; }
    TriangleDistance AtVertex1() const { return {a_ + 2.0 * d_ + f_, 1.0, 0.0}; }
    TriangleDistance AtVertex2() const { return {c_ + 2.0 * e_ + f_, 0.0, 1.0}; }

    TriangleDistance Inside(double s, double t) const {
        return {s * (a_ * s + b_ * t + 2.0 * d_) + t * (b_ * s + c_ * t + 2.0 * e_) + f_, s, t};
    }

    /// The edge t = 0.
    TriangleDistance OnEdge0() const {
        if (d_ >= 0.0) return AtVertex0();
        if (-d_ >= a_) return AtVertex1();
        const double s = -d_ / a_;
        return {d_ * s + f_, s, 0.0};
    }

    /// The edge s = 0.
    TriangleDistance OnEdge1() const {
        if (e_ >= 0.0) return AtVertex0();
        if (-e_ >= c_) return AtVertex2();
        const double t = -e_ / c_;
        return {e_ * t + f_, 0.0, t};
    }

    /// The edge s + t = 1, from vertex 2 (numerator 0) to vertex 1 (numerator = denominator).
    TriangleDistance OnEdge2(double numerator) const {
        if (numerator <= 0.0) return AtVertex2();
        const double denominator = a_ - 2.0 * b_ + c_;
        if (numerator >= denominator) return AtVertex1();
        const double s = numerator / denominator;
        return Inside(s, 1.0 - s);
    }

    TriangleDistance InRegion2() const {
        const double towards_vertex0 = b_ + d_;
        const double towards_vertex1 = c_ + e_;
        if (towards_vertex1 > towards_vertex0) return OnEdge2(towards_vertex1 - towards_vertex0);
        if (towards_vertex1 <= 0.0) return AtVertex2();
        return OnEdge1();
    }

    TriangleDistance InRegion6() const {
        const double towards_vertex0 = b_ + e_;
        const double towards_vertex2 = a_ + d_;
        if (towards_vertex2 > towards_vertex0) {
            const double numerator = towards_vertex2 - towards_vertex0;
            const double denominator = a_ - 2.0 * b_ + c_;
            if (numerator >= denominator) return AtVertex2();
            const double t = numerator / denominator;
            return Inside(1.0 - t, t);
        }
        if (towards_vertex2 <= 0.0) return AtVertex1();
        return OnEdge0();
    }

    double a_;
    double b_;
    double c_;
    double d_;
    double e_;
    double f_;
};

/// Where the segment's line meets the triangle's plane, or an end of the segment.
Vector3 StartingPoint(const Vector3& origin, const Vector3& direction, const EdgeForm& triangle) {
    const Vector3 m = Cross(triangle.edge0, triangle.edge1);
    if (std::abs(Dot(m, direction)) <= kParallelTripleProduct) return origin;
    const double length_squared = LengthSquared(m);
    const Vector3 normal{m.x / length_squared, m.y / length_squared, m.z / length_squared};
    const double height = Dot(normal, origin - triangle.base);
    const double slope = Dot(normal, direction);
    if (height > 0.0) return origin + (-height / slope) * direction;
    const Vector3 end = origin + direction;
    const double end_height = Dot(normal, end - triangle.base);
    return end + (-end_height / slope) * direction;
}

}  // namespace

SegmentDistance PointSegmentDistance(const Vector3& point, const Vector3& origin, const Vector3& direction) {
    const Vector3 difference = point - origin;
    const double along = Dot(difference, direction);
    const double length_squared = Dot(direction, direction);
    double t = 0.0;
    if (along < 0.0) {
        t = 0.0;
    } else if (along >= length_squared) {
        t = 1.0;
    } else {
        t = along / length_squared;
    }
    return {LengthSquared(difference - t * direction), t};
}

TriangleDistance PointTriangleDistance(const Vector3& point, const EdgeForm& triangle) {
    TriangleDistance nearest = DistanceForm(point, triangle).Minimum();
    if (nearest.distance_squared < 0.0) nearest.distance_squared = 0.0;
    return nearest;
}

SegmentTriangleDistance SegmentTriangleDistanceBound(const Vector3& origin,
                                                     const Vector3& direction,
                                                     const EdgeForm& triangle) {
    Vector3 current = StartingPoint(origin, direction, triangle);
    SegmentTriangleDistance result{};
    for (int round = 0; round < kMaxRounds; ++round) {
        const TriangleDistance to_triangle = PointTriangleDistance(current, triangle);
        const Vector3 on_triangle = triangle.PointAt(to_triangle.s, to_triangle.t);
        const SegmentDistance to_segment = PointSegmentDistance(on_triangle, origin, direction);
        current = origin + to_segment.t * direction;
        result = {to_segment.distance_squared, to_segment.t, to_triangle.s, to_triangle.t};
        if (std::abs(to_segment.distance_squared - to_triangle.distance_squared) <= kRoundGain) break;
    }
    return result;
}

TrianglePairDistance TrianglePairDistanceBound(const EdgeForm& first, const EdgeForm& second) {
    Vector3 current = second.base;
    TrianglePairDistance result{};
    for (int round = 0; round < kMaxRounds; ++round) {
        const TriangleDistance to_first = PointTriangleDistance(current, first);
        const Vector3 on_first = first.PointAt(to_first.s, to_first.t);
        const TriangleDistance to_second = PointTriangleDistance(on_first, second);
        current = second.PointAt(to_second.s, to_second.t);
        result = {to_second.distance_squared, to_first.s, to_first.t, to_second.s, to_second.t};
        if (std::abs(to_second.distance_squared - to_first.distance_squared) <= kRoundGain) break;
    }
    return result;
}

}  // namespace tarn::details
