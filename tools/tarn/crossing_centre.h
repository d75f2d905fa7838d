#pragma once

#include "point.h"

#include "tarn/triangle_data.h"

namespace tarn::program {

/// The middle of the segment along which two triangles cross. Where rounding leaves no such segment, the
/// middle between their centroids.
Point CrossingCentre(const tarn::TriangleDataPair& triangles);

}  // namespace tarn::program
