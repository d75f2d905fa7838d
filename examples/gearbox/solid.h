#pragma once

#include "gearbox/contour.h"

#include "tarn/matrix.h"
#include "tarn/triangle_data.h"

#include <vector>

namespace gearbox {

/// One or several closed surfaces as triangles whose normals point outwards: each edge belongs to two
/// triangles that run along it in opposite directions. Millimetres. Solids are joined by listing their
/// triangles one after the other.
using Solid = std::vector<tarn::TriangleData>;

/// A slice of a stack. `top` has the same number of contours and points as `bottom`; where they differ the
/// sides are inclined, which gives chamfers.
struct Slice {
    double height = 0;
    Region bottom;
    Region top;

    static Slice Straight(double height, const Region& region) { return {height, region, region}; }
};

/// Slices on top of each other along +z, the first one on the plane `z`, as one closed surface. A contour
/// that occurs point for point in two neighbouring regions passes through; between all others a plane step is
/// made. The contours that meet in one plane must not cross or touch otherwise. So one call makes stepped
/// shafts, blind holes and counterbores.
Solid Stack(double z, const std::vector<Slice>& slices);

/// A profile turned about the z axis. Its points are (distance from the axis, height along it),
/// counter-clockwise; stretches on the axis itself close the surface and make no triangles.
Solid Revolve(const Contour& profile, int segments);

Solid Placed(Solid solid, const tarn::MATRIX& placement);
void Append(Solid& solid, const Solid& other);

/// Halves edges until none is longer than `limit`. Closed surfaces stay closed, since both triangles of an
/// edge halve it at the same point.
Solid WithShortEdges(const Solid& solid, double limit);

}  // namespace gearbox
