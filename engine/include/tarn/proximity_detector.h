#pragma once

#include "tarn/check_policy.h"
#include "tarn/dump_type.h"
#include "tarn/export.h"
#include "tarn/proximity_configuration.h"
#include "tarn/proximity_result.h"

#include <iosfwd>

namespace tarn {

/// The clearance checker. It has no state: one detector serves any number of configurations, and two are
/// interchangeable. Made by `make_proximity_detector`.
///
/// A couple is reported when some of its triangles intersect, or when its measured distance is not above its
/// clearance. What the check promises:
///  (1) Whatever `ICollisionDetector` sees to intersect is found, at any clearance. Under large clearances
///      leaves whose boxes are apart are tested, too, and the rounding noise of large coplanar faces that lie
///      flush can make them cross.
///  (2) The measured distance is never below the true distance, up to rounding; it need not reach it (see
///      below).
///  (3) The "all" policies report the same couples with the same distances, segments and triangles, in the
///      configuration's couple order, at any number of threads.
///  (4) `Check(configuration)` is true exactly when `AllInterferences` reports a couple.
///
/// How the distance is measured. A bound starts at the squared clearance and is tightened to the smallest
/// squared distance between centres of the hierarchies' boxes (of each box of the first body to each leaf of
/// the second, and of the first body's whole box to each box of the second). Pairs of leaves whose boxes are
/// nearer than the bound are measured, triangle against triangle, by alternating projections that end after
/// at most five rounds. The smallest distance wins. What this means for the caller:
///  - Couples nearer than about 0.03 (squared distance below 0.001) count as touching. A pair of leaves that
///    touch somewhere is left out, and a couple that touches in all of them is not reported.
///  - Where two box centres coincide, or nearly so, as in a shaft in its bush, hardly any pair of leaves is
///    nearer than the bound, and a couple may go unreported.
/// `MeasureProximity` tells of such couples.
///
/// Clearances above the root of the largest double count as that, negative ones by their square. A NaN
/// clearance, and 0, find intersecting couples only. The tolerances are absolute and suit millimetres; those
/// of `ICollisionDetector` come on top.
///
/// Every call first makes the pending placements current (`UpdateBodies`), then throws what the calls of
/// `ICollisionDetector` throw. After any exception the caller's result is as it was.
///
/// Thread-safety: as for `ICollisionDetector`.
class TARN_API IProximityDetector {
public:
    virtual ~IProximityDetector() = default;

    /// Whether any enabled couple intersects or comes within its clearance. Ends at the first that does.
    virtual bool Check(IProximityConfiguration& configuration) = 0;
    /// Replaces `result` by what the policy asks for and returns it.
    virtual ProximityResult& Check(ProximityResult& result,
                                   IProximityConfiguration& configuration,
                                   CheckPolicy policy) = 0;
    /// As `ICollisionDetector::Dump`.
    virtual void Dump(IProximityConfiguration& configuration, DumpType type, std::ostream& stream) = 0;
};

}  // namespace tarn
