#include "core/triangle_intersection.h"

#include <cmath>
#include <utility>

namespace tarn::details {

namespace {

/// The signed values of a triangle's vertices against a plane, with the two products that classify them.
struct Sides {
    double d0;
    double d1;
    double d2;
    double d0d1;
    double d0d2;

    Sides(const Plane& plane, const TriangleData& triangle)
        : d0(SignedValue(plane, Vertex0(triangle))),
          d1(SignedValue(plane, Vertex1(triangle))),
          d2(SignedValue(plane, Vertex2(triangle))),
          d0d1(d0 * d1),
          d0d2(d0 * d2) {}

    bool ExcludeIntersection() const {
        if (std::abs(d0d1) < kOnPlaneProduct && std::abs(d0d2) < kOnPlaneProduct) return true;
        return d0d1 > 0.0 && d0d2 > 0.0;
    }
};

/// An axis on which the line common to both planes is not short: x first, then y, then z, each only if
/// strictly longer.
int LongestAxis(const Vector3& direction) {
    int axis = 0;
    double longest = std::abs(direction.x);
    if (std::abs(direction.y) > longest) {
        longest = std::abs(direction.y);
        axis = 1;
    }
    if (std::abs(direction.z) > longest) axis = 2;
    return axis;
}

struct Interval {
    double from;
    double to;
};

/// Where the edges from the lone vertex to the two others pass the plane, as coordinates along the common
/// line.
Interval IntervalFromLoneVertex(
    double lone, double other1, double other2, double d_lone, double d1, double d2) {
    return {lone + ((other1 - lone) * d_lone) / (d_lone - d1),
            lone + ((other2 - lone) * d_lone) / (d_lone - d2)};
}

/// The interval that a triangle cuts from the common line. False when all its vertices lie exactly on the
/// plane.
bool ProjectedInterval(const TriangleData& triangle, int axis, const Sides& sides, Interval& interval) {
    const double p0 = Vertex0(triangle)[axis];
    const double p1 = Vertex1(triangle)[axis];
    const double p2 = Vertex2(triangle)[axis];
    const auto [d0, d1, d2, d0d1, d0d2] = sides;
    // NOLINTBEGIN(bugprone-branch-clone): which vertex is alone is asked in this order.
    if (d0d1 > 0.0) {
        interval = IntervalFromLoneVertex(p2, p0, p1, d2, d0, d1);
    } else if (d0d2 > 0.0) {
        interval = IntervalFromLoneVertex(p1, p0, p2, d1, d0, d2);
    } else if (d1 * d2 > 0.0 || d0 != 0.0) {
        interval = IntervalFromLoneVertex(p0, p1, p2, d0, d1, d2);
    } else if (d1 != 0.0) {
        interval = IntervalFromLoneVertex(p1, p0, p2, d1, d0, d2);
    } else if (d2 != 0.0) {
        interval = IntervalFromLoneVertex(p2, p0, p1, d2, d0, d1);
    } else {
        return false;
    }
    // NOLINTEND(bugprone-branch-clone)
    if (interval.from > interval.to) std::swap(interval.from, interval.to);
    return true;
}

struct Point2 {
    double x;
    double y;
};

/// Drops the coordinate along which the plane's normal is largest.
class Projection {
public:
    explicit Projection(const Vector3& normal) {
        const double x = std::abs(normal.x);
        const double y = std::abs(normal.y);
        const double z = std::abs(normal.z);
        const int dropped = x > y ? (x > z ? 0 : 2) : (z > y ? 2 : 1);
        first_axis_ = dropped == 0 ? 1 : 0;
        second_axis_ = dropped == 2 ? 1 : 2;
    }

    Point2 operator()(const Vector3& point) const { return {point[first_axis_], point[second_axis_]}; }

private:
    int first_axis_;
    int second_axis_;
};

struct Triangle2 {
    Point2 v[3];

    Triangle2(const TriangleData& triangle, const Projection& project)
        : v{project(Vertex0(triangle)), project(Vertex1(triangle)), project(Vertex2(triangle))} {}
};

/// Edge a0-a1 against edge b0-b1; both parameters are compared as numerators, so parallel edges (f = 0) never
/// meet.
bool EdgesMeet(const Point2& a0, const Point2& a1, const Point2& b0, const Point2& b1) {
    const double ax = a1.x - a0.x;
    const double ay = a1.y - a0.y;
    const double bx = b0.x - b1.x;
    const double by = b0.y - b1.y;
    const double cx = a0.x - b0.x;
    const double cy = a0.y - b0.y;
    const double f = ay * bx - ax * by;
    const double d = by * cx - bx * cy;
    if (f > 0.0 && d >= 0.0 && d <= f) {
        const double e = ax * cy - ay * cx;
        return e >= 0.0 && e <= f;
    }
    if (f < 0.0 && d <= 0.0 && d >= f) {
        const double e = ax * cy - ay * cx;
        return e <= 0.0 && e >= f;
    }
    return false;
}

/// Which side of the line from-to a point lies on.
double EdgeFunction(const Point2& from, const Point2& to, const Point2& point) {
    const double a = to.y - from.y;
    const double b = -(to.x - from.x);
    const double c = -a * from.x - b * from.y;
    return a * point.x + b * point.y + c;
}

bool StrictlyInside(const Point2& point, const Triangle2& triangle) {
    const double side0 = EdgeFunction(triangle.v[0], triangle.v[1], point);
    const double side1 = EdgeFunction(triangle.v[1], triangle.v[2], point);
    const double side2 = EdgeFunction(triangle.v[2], triangle.v[0], point);
    return side0 * side1 > 0.0 && side0 * side2 > 0.0;
}

}  // namespace

bool TrianglesIntersect(const TriangleData& a,
                        const Plane& plane_a,
                        const TriangleData& b,
                        const Plane& plane_b) {
    const Sides sides_b(plane_a, b);
    if (sides_b.ExcludeIntersection()) return false;
    const Sides sides_a(plane_b, a);
    if (sides_a.ExcludeIntersection()) return false;

    const int axis = LongestAxis(Cross(plane_a.normal, plane_b.normal));
    Interval on_a{};
    Interval on_b{};
    if (!ProjectedInterval(a, axis, sides_a, on_a) || !ProjectedInterval(b, axis, sides_b, on_b)) {
        return CoplanarTrianglesIntersect(plane_a.normal, a, b);
    }
    return !(on_a.to < on_b.from || on_b.to < on_a.from);
}

bool CoplanarTrianglesIntersect(const Vector3& normal, const TriangleData& a, const TriangleData& b) {
    const Projection project(normal);
    const Triangle2 first(a, project);
    const Triangle2 second(b, project);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            if (EdgesMeet(first.v[i], first.v[(i + 1) % 3], second.v[j], second.v[(j + 1) % 3])) return true;
        }
    }
    return StrictlyInside(first.v[0], second) || StrictlyInside(second.v[0], first);
}

}  // namespace tarn::details
