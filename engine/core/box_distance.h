#pragma once

#include "core/box.h"
#include "core/vector3.h"

#include <cmath>

/// \file
/// Squared distances of boxes and of their centres, all by one arithmetic, so that they can be compared
/// exactly. Let A lie inside a and B inside b, bound by bound. Then, as rounding is monotonic,
///     BoxDistanceSquared(a, b) <= CentreToBoxDistanceSquared(DoubledCentre(A), b)
///                              <= CentreDistanceSquared(DoubledCentre(A), DoubledCentre(B))
/// without a margin: doubling and quartering are exact, and on each axis the doubled sums of a box's bounds
/// lie between twice its minimum and twice its maximum. (Only below the square root of the smallest number,
/// some 1e-162, do the quarters round.) A NaN bound separates nothing.

namespace tarn::details {

/// How far [min_a, max_a] lies from [min_b, max_b]; 0 where they overlap.
inline double Gap(double min_a, double max_a, double min_b, double max_b) {
    return min_a > max_b ? min_a - max_b : min_b > max_a ? min_b - max_a : 0.0;
}

/// 0 exactly where `Overlap` holds (but for gaps whose square is too small for a number).
inline double BoxDistanceSquared(const Box& a, const Box& b) {
    return LengthSquared({Gap(a.min.x, a.max.x, b.min.x, b.max.x), Gap(a.min.y, a.max.y, b.min.y, b.max.y),
                          Gap(a.min.z, a.max.z, b.min.z, b.max.z)});
}

/// Twice the centre, without the rounding of a half.
inline Vector3 DoubledCentre(const Box& box) {
    return box.min + box.max;
}

inline double CentreDistanceSquared(const Vector3& doubled_a, const Vector3& doubled_b) {
    return LengthSquared(doubled_a - doubled_b) * 0.25;
}

inline double CentreToBoxDistanceSquared(const Vector3& doubled, const Box& box) {
    const auto gap = [](double centre, double min, double max) {
        return Gap(centre, centre, 2.0 * min, 2.0 * max);
    };
    return LengthSquared({gap(doubled.x, box.min.x, box.max.x), gap(doubled.y, box.min.y, box.max.y),
                          gap(doubled.z, box.min.z, box.max.z)}) *
           0.25;
}

}  // namespace tarn::details
