#include "crossing_centre.h"

#include "tarn/triangle_segments.h"

namespace tarn::program {

Point CrossingCentre(const tarn::TriangleDataPair& triangles) {
    auto [is_found, segment] = tarn::ComputeIntersectingSegment(triangles.first, triangles.second);
    if (!is_found) segment = tarn::ComputeCentroidSegment(triangles.first, triangles.second);
    // Halves are added, not sums halved: sums of huge coordinates could overflow.
    return {segment.P1X / 2 + segment.P2X / 2, segment.P1Y / 2 + segment.P2Y / 2,
            segment.P1Z / 2 + segment.P2Z / 2};
}

}  // namespace tarn::program
