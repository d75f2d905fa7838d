#include "detect/proximity_search.h"

#include "core/aabb_hierarchy.h"
#include "core/box_distance.h"
#include "detect/bound_tightening.h"
#include "detect/hierarchy_traversal.h"
#include "detect/leaf_distance.h"
#include "detect/pair_descent.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace tarn::details {

namespace {

/// Measures the leaf pairs that are retained, in traversal order.
class RetainedLeaves {
public:
    RetainedLeaves(const AABBHierarchy& first, const AABBHierarchy& second, double clearance_squared)
        : leaf_distance_(first, second, clearance_squared) {}

    void Add(const NodePair& leaves, double box_distance_squared) {
        ++count_;
        if (box_distance_squared - leaf_distance_.Slack() > best_) return;
        const NearestTriangles measured = leaf_distance_.Measure(leaves, best_, Filters::Off);
        const bool touches = nearest_.touches || measured.touches;
        const bool has_unknown = nearest_.has_unknown || measured.has_unknown;
        // On a tie, the earlier one stays.
        if (measured.is_valid && (!nearest_.is_valid || measured.distance_squared < best_)) {
            nearest_ = measured;
            best_ = measured.distance_squared;
        }
        nearest_.touches = touches;
        nearest_.has_unknown = has_unknown;
    }

    const NearestTriangles& Nearest() const { return nearest_; }
    std::uint64_t Count() const { return count_; }

private:
    LeafDistance leaf_distance_;
    NearestTriangles nearest_;
    double best_ = std::numeric_limits<double>::infinity();
    std::uint64_t count_ = 0;
};

}  // namespace

ProximityFinding SearchProximity(const AABBHierarchy& first, const AABBHierarchy& second, double clearance) {
    const double clearance_squared = ClampedSquare(clearance);
    // Empty bodies are infinitely far away.
    if (first.Root().IsEmpty() || second.Root().IsEmpty()) return FindingBeyond(clearance_squared);
    const auto distance_of = [&](const NodePair& pair) {
        return BoxDistanceSquared(first.WorldBox(*pair.first), second.WorldBox(*pair.second));
    };
    // Most couples of an assembly end here. Centres are no nearer than boxes: the bound stays, too.
    if (!IsWithin(distance_of({&first.Root(), &second.Root()}), clearance_squared))
        return FindingBeyond(clearance_squared);
    // Overlapping leaf pairs are looked at under any bound, so a crossing between them needs none.
    if (FindFirstHit(first, second)) return FindingOfCrossing(clearance_squared);

    const double bound = TightenBound(first, second, clearance_squared);
    LeafTest leaf_test(std::max(first.LeafNumber(), second.LeafNumber()));
    RetainedLeaves retained(first, second, clearance_squared);
    double distance = 0.0;
    const bool is_crossing = VisitLeafPairs(
        first, second,
        [&](const NodePair& pair) {
            distance = distance_of(pair);
            return IsWithin(distance, bound);
        },
        [&](const NodePair& leaves) {
            const bool is_tested = Overlap(first.WorldBox(*leaves.first), second.WorldBox(*leaves.second));
            if (!is_tested && leaf_test.FindFirstHit(first.WorldTriangles(*leaves.first),
                                                     second.WorldTriangles(*leaves.second)))
                return true;
            if (bound > 0.0) retained.Add(leaves, distance);
            return false;
        });
    if (is_crossing) return FindingOfCrossing(clearance_squared);
    return FindingOf(retained.Nearest(), clearance_squared, bound, retained.Count());
}

}  // namespace tarn::details
