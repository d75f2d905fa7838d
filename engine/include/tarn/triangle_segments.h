#pragma once

#include "tarn/export.h"
#include "tarn/triangle_data.h"

#include <utility>

namespace tarn {

/// The segment along which two triangles cross, both in one frame. The flag tells whether one was found; the
/// segment means nothing otherwise. A crossing at a vertex may be found twice and give a segment of no
/// length. Tolerances are absolute, as those of the detector. Safe from any thread.
TARN_API std::pair<bool, SegmentData> ComputeIntersectingSegment(const TriangleData& first,
                                                                 const TriangleData& second);

/// The segment from the centroid of the first triangle to that of the second. Safe from any thread.
TARN_API SegmentData ComputeCentroidSegment(const TriangleData& first, const TriangleData& second);

}  // namespace tarn
