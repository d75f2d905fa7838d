#pragma once

#include "tarn/triangle_data.h"

namespace tarn::details {

/// Whether two triangles are shown to have no point in common: whether, along one of 29 directions, they lie
/// farther apart than rounding can account for. The directions are the two normals, the 18 vectors from a
/// vertex to the nearest point of an edge of the other triangle, and the nine cross products of edges.
///
/// Triangles shown apart are apart, as the coordinates stand. With u = 2^-53 and R bounding how far vertices
/// lie from one of them: a difference of coordinates is off by u times itself, a projection on n by 4 u |n| R
/// with that, a gap of two projections by 10 u |n| R. The margin is 16 u |n| R, whatever made n. Where a
/// coordinate is no number, or R or n is out of range, nothing is shown.
///
/// Answers do not depend on where the origin is but for the roundings of coordinates. The two triangles are
/// interchangeable but for the last digits of the margin.
bool AreShownApart(const TriangleData& a, const TriangleData& b);

/// Triangles at least this far from each other are shown apart, whatever their shape. `longest_edge` is that
/// of both; it is at least 1e-25 here, and coordinates are at most 1e45.
///
/// Proof. Let d be their distance, m its direction, L the longest edge, d >= 4 cbrt(u) L (2e-5 is more). The
/// triangles lie beyond two planes across m, no vertex farther than L from the nearest points, so a unit
/// vector within r of m leaves a gap of d (1 - r r / 2) - 2 r L. Rounding of gap and margin costs next to
/// nothing of d, and so does that of vectors from edges to vertices, 10 u (L + d). Cross products of edges at
/// an angle x are off by 4 sqrt(2) u / sin x. Nearest to each other is always one of these:
///  (1) A vertex and a point of an edge: r = 0.
///  (2) Points inside of two edges at an angle x, the shorter one l long. With s = l sin x <= d d / (4 L),
///      move along both until one ends: from that vertex the other edge is off m by s / d at most, so
///      2 r L <= d / 2, and r <= 1 / 2 as s <= L. Elsewhere sin x > d d / (4 L L): their cross product has
///      2 r L < 32 sqrt(2) u L L L / (d d) < 0.71 d.
///  (3) A vertex and a point inside of a triangle of least height h. With h <= d d / (4 L), the longest edge
///      is off m by h / d at most as the vertex sees it. Elsewhere the normal has r < 4 sqrt(2) u L / h. Both
///      go on as in (2).
constexpr double GuaranteedSeparation(double longest_edge) {
    return 2e-5 * longest_edge;
}

}  // namespace tarn::details
