#pragma once

#include "core/narrow_triangle.h"

#include <span>

namespace tarn::details {

/// A box turned in space, in single precision.
struct OrientedBox {
    /// Unit vectors at right angles, both up to rounding.
    float axis[3][3];
    float centre[3];
    float half[3];
};

/// A small box around triangles, of which there is at least one. Of several directions in which they may lie
/// the best one is taken: along the coordinate axes, along the largest triangle, along the sum of the normals,
/// and along the principal axes (S. Gottschalk, M. C. Lin, D. Manocha, "OBBTree", 1996). Contains them up to
/// roundings of the coordinates.
OrientedBox FitOrientedBox(std::span<const NarrowTriangle> triangles);

}  // namespace tarn::details
