#pragma once

#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"

#include "tarn/triangle_data.h"

namespace Ostrel::Quarrix::Collisions {

/// The segment that joins the reported points of two elements, in model units. Never changes.
class QUARRIX_API DistanceSegment final : public Object {
public:
    /// All zeros.
    DistanceSegment() = default;
    /// The length is taken as it is given.
    DistanceSegment(double point1X,
                    double point1Y,
                    double point1Z,
                    double point2X,
                    double point2Y,
                    double point2Z,
                    double length);
    /// The length is that of the segment.
    explicit DistanceSegment(const tarn::SegmentData& segment);

    ///@{
    /// A coordinate of the point on the first element.
    double get_P1X() const { return p1x_; }
    double get_P1Y() const { return p1y_; }
    double get_P1Z() const { return p1z_; }
    ///@}
    ///@{
    /// A coordinate of the point on the second element.
    double get_P2X() const { return p2x_; }
    double get_P2Y() const { return p2y_; }
    double get_P2Z() const { return p2z_; }
    ///@}
    /// The length that it was made with.
    double get_Length() const { return length_; }

private:
    double p1x_ = 0.0, p1y_ = 0.0, p1z_ = 0.0;
    double p2x_ = 0.0, p2y_ = 0.0, p2z_ = 0.0;
    double length_ = 0.0;
};

}  // namespace Ostrel::Quarrix::Collisions
