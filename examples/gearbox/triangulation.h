#pragma once

#include "gearbox/contour.h"

#include <array>
#include <vector>

namespace gearbox {

/// Fills the area between a counter-clockwise outline and the holes directly inside it with counter-clockwise
/// triangles:
///  (1) their corners are the given points, no others, so that side walls fit without gaps;
///  (2) every edge of a contour belongs to exactly one triangle, every other edge to two;
///  (3) no interior edge can be exchanged for a better one in Delaunay's sense, so slivers are as few as (1)
///      allows.
/// Holes may have either sense. Throws `std::logic_error` where the contours cross or touch.
std::vector<std::array<Point, 3>> Triangulate(const Contour& outline, const std::vector<Contour>& holes);

}  // namespace gearbox
