#pragma once

#include "core/triangle.h"
#include "core/vector3.h"

#include "tarn/matrix.h"

#include <algorithm>
#include <cstddef>

namespace tarn::details {

/// An axis-aligned box with its extent sum, by which a descent chooses the node to split.
struct Box {
    Vector3 min;
    Vector3 max;
    double extent_sum;
};

inline Vector3 Extents(const Box& box) {
    return box.max - box.min;
}

inline double ExtentSum(const Box& box) {
    const Vector3 extents = Extents(box);
    return extents.x + extents.y + extents.z;
}

/// Boxes overlap unless one lies strictly beyond the other on some axis. Properties:
///  (1) Overlap(a, b) equals Overlap(b, a).
///  (2) Boxes that only touch overlap.
///  (3) A NaN bound excludes nothing.
inline bool Overlap(const Box& a, const Box& b) {
    return !(a.min.x > b.max.x || b.min.x > a.max.x || a.min.y > b.max.y || b.min.y > a.max.y ||
             a.min.z > b.max.z || b.min.z > a.max.z);
}

/// Extent up to which a triangle's box counts as flat, and what a flat axis is widened by on each side.
inline constexpr double kFlatExtent = 1e-7;
inline constexpr double kFlatWidening = 1e-6;

/// Component by component. The first operand stays on equality and on NaN (std::min and std::max do just
/// that).
inline Vector3 Min(const Vector3& a, const Vector3& b) {
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}
inline Vector3 Max(const Vector3& a, const Vector3& b) {
    return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

/// The box of one triangle, widened where it is flat. The extent sum is not set up here: it belongs to nodes.
inline Box TriangleBox(const TriangleData& triangle) {
    const Vector3 v0 = Vertex0(triangle);
    const Vector3 v1 = Vertex1(triangle);
    const Vector3 v2 = Vertex2(triangle);
    Box box{Min(Min(v0, v1), v2), Max(Max(v0, v1), v2), 0.0};
    const auto widen = [](double& min, double& max) {
        if (max - min <= kFlatExtent) {
            max += kFlatWidening;
            min -= kFlatWidening;
        }
    };
    widen(box.min.x, box.max.x);
    widen(box.min.y, box.max.y);
    widen(box.min.z, box.max.z);
    return box;
}

inline void Grow(Box& box, const Box& by) {
    box.min = Min(box.min, by.min);
    box.max = Max(box.max, by.max);
}

/// The box of the moved box, not the tight box of what is inside; the extent sum stays that of `local`,
/// whatever the placement. Each bound adds up as `Place` does for a point, products first and the translation
/// last, and rounding is monotonic: so the result contains every placed point of the local box, without a
/// margin.
inline Box Place(const MATRIX& placement, const Box& local) {
    struct Interval {
        double min;
        double max;
    };
    const auto interval = [&](std::size_t row) {
        const double* r = placement.m + 4 * row;
        const double x0 = r[0] * local.min.x, x1 = r[0] * local.max.x;
        const double y0 = r[1] * local.min.y, y1 = r[1] * local.max.y;
        const double z0 = r[2] * local.min.z, z1 = r[2] * local.max.z;
        return Interval{r[3] + ((std::min(x0, x1) + std::min(y0, y1)) + std::min(z0, z1)),
                        r[3] + ((std::max(x0, x1) + std::max(y0, y1)) + std::max(z0, z1))};
    };
    const Interval x = interval(0);
    const Interval y = interval(1);
    const Interval z = interval(2);
    return {{x.min, y.min, z.min}, {x.max, y.max, z.max}, local.extent_sum};
}

}  // namespace tarn::details
