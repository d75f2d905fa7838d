#pragma once

#include "tarn/triangle_data.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>

namespace tarn::test {

/// The true squared distance of two triangles, exact up to the rounding of long double: that of a vertex from
/// a triangle, of two edges, or 0 where an edge pierces a triangle. Triangles without area are their edges.
struct LongVector {
    long double x, y, z;

    friend LongVector operator+(const LongVector& a, const LongVector& b) {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend LongVector operator-(const LongVector& a, const LongVector& b) {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend LongVector operator*(long double factor, const LongVector& a) {
        return {factor * a.x, factor * a.y, factor * a.z};
    }
};

inline long double LongDot(const LongVector& a, const LongVector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

using LongTriangle = std::array<LongVector, 3>;

inline LongTriangle LongOf(const TriangleData& t) {
    const auto vertex = [](double x, double y, double z) {
        return LongVector{static_cast<long double>(x), static_cast<long double>(y),
                          static_cast<long double>(z)};
    };
    return {vertex(t.v0x, t.v0y, t.v0z), vertex(t.v1x, t.v1y, t.v1z), vertex(t.v2x, t.v2y, t.v2z)};
}

/// Whether a point of the triangle's plane lies in it.
inline bool Covers(const LongTriangle& t, const LongVector& point) {
    const LongVector u = t[1] - t[0];
    const LongVector v = t[2] - t[0];
    const LongVector w = point - t[0];
    const long double determinant = LongDot(u, u) * LongDot(v, v) - LongDot(u, v) * LongDot(u, v);
    const long double s = LongDot(w, u) * LongDot(v, v) - LongDot(w, v) * LongDot(u, v);
    const long double r = LongDot(w, v) * LongDot(u, u) - LongDot(w, u) * LongDot(u, v);
    return determinant > 0 && s >= 0 && r >= 0 && s + r <= determinant;
}

inline LongVector LongNormal(const LongTriangle& t) {
    const LongVector u = t[1] - t[0];
    const LongVector v = t[2] - t[0];
    return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

inline long double TrueToSegment(const LongVector& point, const LongVector& from, const LongVector& to) {
    const LongVector along = to - from;
    const long double length_squared = LongDot(along, along);
    const long double at = length_squared > 0 ? LongDot(point - from, along) / length_squared : 0;
    const LongVector apart = point - (from + std::clamp(at, 0.0L, 1.0L) * along);
    return LongDot(apart, apart);
}

inline long double TrueToTriangle(const LongVector& point, const LongTriangle& t) {
    const LongVector normal = LongNormal(t);
    const long double height = LongDot(normal, point - t[0]);
    const long double length_squared = LongDot(normal, normal);
    if (length_squared > 0 && Covers(t, point - height / length_squared * normal))
        return height * height / length_squared;
    return std::min({TrueToSegment(point, t[0], t[1]), TrueToSegment(point, t[1], t[2]),
                     TrueToSegment(point, t[2], t[0])});
}

/// Where both edges are nearest inside; where they are at an end, the vertices tell.
inline long double TrueBetweenInsides(const LongVector& p,
                                      const LongVector& p_to,
                                      const LongVector& q,
                                      const LongVector& q_to,
                                      long double otherwise) {
    const LongVector u = p_to - p;
    const LongVector v = q_to - q;
    const LongVector w = p - q;
    const long double determinant = LongDot(u, u) * LongDot(v, v) - LongDot(u, v) * LongDot(u, v);
    if (!(determinant > 0)) return otherwise;
    const long double s = (LongDot(u, v) * LongDot(v, w) - LongDot(v, v) * LongDot(u, w)) / determinant;
    const long double r = (LongDot(u, u) * LongDot(v, w) - LongDot(u, v) * LongDot(u, w)) / determinant;
    if (!(s >= 0 && s <= 1 && r >= 0 && r <= 1)) return otherwise;
    const LongVector apart = w + s * u - r * v;
    return LongDot(apart, apart);
}

inline bool Pierces(const LongVector& from, const LongVector& to, const LongTriangle& t) {
    const LongVector normal = LongNormal(t);
    const long double from_height = LongDot(normal, from - t[0]);
    const long double to_height = LongDot(normal, to - t[0]);
    if (from_height == to_height || from_height * to_height > 0) return false;
    return Covers(t, from + from_height / (from_height - to_height) * (to - from));
}

inline double TrueDistanceSquared(const TriangleData& first, const TriangleData& second) {
    const LongTriangle a = LongOf(first);
    const LongTriangle b = LongOf(second);
    long double least = TrueToTriangle(a[0], b);
    for (std::size_t i = 0; i < 3; ++i) {
        const LongVector& a_to = a[(i + 1) % 3];
        const LongVector& b_to = b[(i + 1) % 3];
        if (Pierces(a[i], a_to, b) || Pierces(b[i], b_to, a)) return 0.0;
        least = std::min({least, TrueToTriangle(a[i], b), TrueToTriangle(b[i], a)});
        for (std::size_t j = 0; j < 3; ++j)
            least = std::min(least, TrueBetweenInsides(a[i], a_to, b[j], b[(j + 1) % 3], least));
    }
    return static_cast<double>(least);
}

}  // namespace tarn::test
