#include "ostrel/quarrix/distance_segment.h"

#include <cmath>

namespace Ostrel::Quarrix::Collisions {

namespace {

/// The squares are summed y, x, z, which fixes the last bit.
double LengthOf(const tarn::SegmentData& segment) {
    const double dx = segment.P1X - segment.P2X;
    const double dy = segment.P1Y - segment.P2Y;
    const double dz = segment.P1Z - segment.P2Z;
    return std::sqrt(dy * dy + dx * dx + dz * dz);
}

}  // namespace

DistanceSegment::DistanceSegment(double point1X,
                                 double point1Y,
                                 double point1Z,
                                 double point2X,
                                 double point2Y,
                                 double point2Z,
                                 double length)
    : p1x_(point1X),
      p1y_(point1Y),
      p1z_(point1Z),
      p2x_(point2X),
      p2y_(point2Y),
      p2z_(point2Z),
      length_(length) {}

DistanceSegment::DistanceSegment(const tarn::SegmentData& segment)
    : DistanceSegment(
          segment.P1X, segment.P1Y, segment.P1Z, segment.P2X, segment.P2Y, segment.P2Z, LengthOf(segment)) {}

}  // namespace Ostrel::Quarrix::Collisions
