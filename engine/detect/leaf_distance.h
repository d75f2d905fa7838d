#pragma once

#include "core/aabb_hierarchy.h"
#include "core/triangle_distance.h"
#include "detect/filters.h"
#include "detect/leaf_test.h"
#include "detect/pair_descent.h"

namespace tarn::details {

/// Squared distance, in squared length units, below which two triangles count as touching.
inline constexpr double kTouchDistanceSquared = 0.001;

/// The nearest triangle pair of one or more pairs of leaves.
struct NearestTriangles {
    bool is_valid = false;  ///< false where nothing was measured, or a touching pair was met
    bool touches = false;   ///< a touching pair was met
    /// Where nothing touches: a pair was met whose distance is no number and whose boxes do not show it to
    /// lie beyond the clearance.
    bool has_unknown = false;
    double distance_squared = 0.0;
    NodePair leaves{};
    TriangleHit triangles;
    TrianglePairDistance parameters{};
};

/// Measures pairs of leaves, triangle by triangle, and leaves out what cannot win.
///
/// The measured squared distance of two triangles can lie a little below the true one, because the region
/// formulas cancel. With U the diagonal of the union of both bodies' boxes and M their largest coordinate by
/// magnitude, every term of these formulas is a product of two lengths up to U, and the points between which
/// they measure lie off their triangles by a few roundings of M: some tens of roundings of U (U + M) in all.
/// The same holds for the lower bounds that are compared with it, by boxes and by planes. So where
///     squared lower bound - 64 * 2^-53 * U (U + M) > best
/// the measured distance is above the best, strictly: the pair is neither chosen nor a tie. It does not touch
/// either, as long as the best is not below the touch threshold. A comparison with NaN leaves nothing out.
class LeafDistance {
public:
    LeafDistance(const AABBHierarchy& first, const AABBHierarchy& second, double clearance_squared);

    /// The nearest triangles of two leaves, of those whose squared distance may be up to `best`, which is at
    /// least the touch threshold. Where any touch, nothing else counts. With filters, the triangles' planes
    /// help to skip, and pairs without a distance may go unnoticed. Safe from any thread.
    NearestTriangles Measure(const NodePair& leaves, double best, Filters filters) const;

    /// By how much a squared lower bound must exceed the best.
    double Slack() const { return slack_; }

private:
    const AABBHierarchy& first_;
    const AABBHierarchy& second_;
    double clearance_squared_;
    double slack_;
};

}  // namespace tarn::details
