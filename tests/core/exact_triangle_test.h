#pragma once

#include "tarn/triangle_data.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>

namespace tarn::test {

/// A point of whole coordinates, each at most 2^10 from the origin (2^15 in a plane). Everything below is
/// exact then: a signed volume is a sum of six products of three differences, below 6 * 2^33.
using WholePoint = std::array<std::int64_t, 3>;
using WholeTriangle = std::array<WholePoint, 3>;

inline WholeTriangle RandomWhole(std::mt19937_64& random, std::int64_t reach) {
    std::uniform_int_distribution<std::int64_t> coordinate(-reach, reach);
    WholeTriangle triangle;
    for (WholePoint& vertex : triangle) {
        for (std::int64_t& c : vertex) c = coordinate(random);
    }
    return triangle;
}

inline TriangleData DataOf(const WholeTriangle& triangle) {
    const auto at = [&](std::size_t vertex, std::size_t axis) {
        return static_cast<double>(triangle[vertex][axis]);
    };
    return {at(0, 0), at(0, 1), at(0, 2), at(1, 0), at(1, 1), at(1, 2), at(2, 0), at(2, 1), at(2, 2)};
}

/// -1, 0 or 1: on which side of the plane through a, b, c the point p lies.
inline int SideOf(const WholePoint& a, const WholePoint& b, const WholePoint& c, const WholePoint& p) {
    const auto from_a = [&a](const WholePoint& q) {
        return WholePoint{q[0] - a[0], q[1] - a[1], q[2] - a[2]};
    };
    const WholePoint u = from_a(b);
    const WholePoint v = from_a(c);
    const WholePoint w = from_a(p);
    const std::int64_t volume = u[0] * (v[1] * w[2] - v[2] * w[1]) + u[1] * (v[2] * w[0] - v[0] * w[2]) +
                                u[2] * (v[0] * w[1] - v[1] * w[0]);
    return volume > 0 ? 1 : volume < 0 ? -1 : 0;
}

/// How two things lie to each other. `Undecided`: a point lies on a plane or two lines meet, so that rounding
/// and tolerances have a say.
enum class Position { Apart, Crossing, Undecided };

/// Segment p-q against a triangle, by the signs of tetrahedron volumes (J. O'Rourke, "Computational Geometry
/// in C", second edition, 1998, section 7.3).
inline Position SegmentAgainst(const WholeTriangle& t, const WholePoint& p, const WholePoint& q) {
    const int side_p = SideOf(t[0], t[1], t[2], p);
    const int side_q = SideOf(t[0], t[1], t[2], q);
    const int turn0 = SideOf(p, q, t[0], t[1]);
    const int turn1 = SideOf(p, q, t[1], t[2]);
    const int turn2 = SideOf(p, q, t[2], t[0]);
    if (side_p * side_q * turn0 * turn1 * turn2 == 0) return Position::Undecided;
    return side_p != side_q && turn0 == turn1 && turn1 == turn2 ? Position::Crossing : Position::Apart;
}

/// Two triangles cross when an edge of one crosses the other.
inline Position TriangleAgainst(const WholeTriangle& a, const WholeTriangle& b) {
    Position answer = Position::Apart;
    for (std::size_t i = 0; i < 3; ++i) {
        for (const Position of_edge :
             {SegmentAgainst(a, b[i], b[(i + 1) % 3]), SegmentAgainst(b, a[i], a[(i + 1) % 3])}) {
            if (of_edge == Position::Undecided) return Position::Undecided;
            if (of_edge == Position::Crossing) answer = Position::Crossing;
        }
    }
    return answer;
}

using WholePoint2 = std::array<std::int64_t, 2>;
using WholeTriangle2 = std::array<WholePoint2, 3>;

/// Twice the signed area of a triangle in the plane.
inline std::int64_t TwiceArea(const WholePoint2& a, const WholePoint2& b, const WholePoint2& c) {
    return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
}

/// Whether two triangles of some area in the plane share a point: two convex polygons do unless an edge of
/// one has all of the other strictly beyond it (separating axes).
inline bool SharePoint(const WholeTriangle2& a, const WholeTriangle2& b) {
    for (const auto& pair : {std::pair(a, b), std::pair(b, a)}) {
        const WholeTriangle2& by = pair.first;
        const std::int64_t turn = TwiceArea(by[0], by[1], by[2]) > 0 ? 1 : -1;
        for (std::size_t i = 0; i < 3; ++i) {
            const auto is_beyond = [&](const WholePoint2& p) {
                return turn * TwiceArea(by[i], by[(i + 1) % 3], p) < 0;
            };
            if (std::ranges::all_of(pair.second, is_beyond)) return false;
        }
    }
    return true;
}

}  // namespace tarn::test
