#include "detect/proximity_search.h"

#include "core/aabb_hierarchy.h"
#include "core/box_distance.h"
#include "detect/bound_tightening.h"
#include "detect/candidate_evaluation.h"
#include "detect/hierarchy_traversal.h"
#include "detect/pair_descent.h"
#include "detect/relative_frame.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarn::details {

namespace {

/// Larger clearances have no finite square.
double ClampedSquare(double clearance) {
    static const double largest = std::sqrt(std::numeric_limits<double>::max());
    if (clearance > largest) clearance = largest;
    return clearance * clearance;
}

/// Whether a pair of boxes is looked at: nearer than the bound, or, where the bound admits nothing,
/// overlapping. World boxes nest exactly, so a refused pair has nothing below it that would be admitted.
bool IsWithin(double box_distance_squared, double bound) {
    return bound > 0.0 ? box_distance_squared < bound : box_distance_squared == 0.0;
}

/// The measured distance decides between the states by the couple's own clearance, not by the tightened
/// bound: that one only chooses what is measured. It is no upper bound of the distance (between parallel
/// faces it equals the gap, up to rounding).
ProximityState StateOf(double distance_squared, double clearance_squared) {
    return distance_squared > clearance_squared ? ProximityState::BeyondClearance
                                                : ProximityState::WithinClearance;
}

SegmentData SegmentOf(const NearestTriangles& nearest) {
    const TrianglePairDistance& at = nearest.parameters;
    const Vector3 p1 = EdgeForm(*nearest.triangles.first).PointAt(at.s1, at.t1);
    const Vector3 p2 = EdgeForm(*nearest.triangles.second).PointAt(at.s2, at.t2);
    return {p1.x, p1.y, p1.z, p2.x, p2.y, p2.z};
}

/// The bound is tightened before anything is retained, but not before the crossing test of overlapping leaf
/// pairs: these are looked at under any bound, so a crossing between them needs none.
class ProximitySearch {
public:
    ProximitySearch(const AABBHierarchy& first, const AABBHierarchy& second, double clearance)
        : first_(first),
          second_(second),
          frame_(first, second),
          clearance_squared_(ClampedSquare(clearance)) {
        finding_.outcome.bound = clearance_squared_;
    }

    ProximityFinding Run() {
        const Box& first_box = first_.WorldBox(first_.Root());
        const Box& second_box = second_.WorldBox(second_.Root());
        // Most couples of an assembly end here. Centres are no nearer than boxes: the bound stays, too.
        if (!IsWithin(BoxDistanceSquared(first_box, second_box), clearance_squared_)) return finding_;
        if (FindFirstHit(first_, second_)) return Intersecting();
        finding_.outcome.bound = TightenBound(first_, second_, clearance_squared_);
        CandidateEvaluation candidates(first_, second_, clearance_squared_);
        if (CollectCandidates(candidates)) return Intersecting();
        finding_.outcome.retained_count = candidates.added_count();
        Judge(candidates.Finish());
        return finding_;
    }

private:
    ProximityFinding Intersecting() {
        finding_.outcome.state = ProximityState::Intersecting;
        finding_.outcome.bound = clearance_squared_;
        return finding_;
    }

    /// Returns whether triangles intersect. Rounding can make large coplanar triangles cross though their
    /// boxes are apart, so the test is not left out for leaf pairs at a distance. Overlapping ones have been
    /// tested.
    bool CollectCandidates(CandidateEvaluation& candidates) {
        LeafTest leaf_test(std::max(first_.LeafNumber(), second_.LeafNumber()));
        const double bound = finding_.outcome.bound;
        double distance = 0.0;
        return VisitLeafPairs(
            first_, second_,
            [&](const NodePair& pair) {
                distance = BoxDistanceSquared(first_.WorldBox(*pair.first), second_.WorldBox(*pair.second));
                return IsWithin(distance, bound);
            },
            [&](const NodePair& leaves) {
                const Box& a = first_.WorldBox(*leaves.first);
                const Box& b = second_.WorldBox(*leaves.second);
                if (!Overlap(a, b) && !frame_.LeavesAreApart(*leaves.first, *leaves.second) &&
                    leaf_test.FindFirstHit(first_.WorldTriangles(*leaves.first),
                                           second_.WorldTriangles(*leaves.second)))
                    return true;
                if (bound > 0.0) candidates.Add(leaves, distance);
                return false;
            });
    }

    void Judge(const NearestTriangles& nearest) {
        ProximityOutcome& outcome = finding_.outcome;
        outcome.touches = nearest.touches;
        if (nearest.is_valid) {
            outcome.state = StateOf(nearest.distance_squared, clearance_squared_);
            outcome.distance = std::sqrt(nearest.distance_squared);
            outcome.segment = SegmentOf(nearest);
            finding_.triangles = nearest.triangles;
        } else if (outcome.retained_count > 0) {
            outcome.state = ProximityState::Touching;
        }
        switch (outcome.state) {
            case ProximityState::BeyondClearance:
                // Under the full clearance, what was left out lies beyond it.
                outcome.is_judged = !(outcome.bound < clearance_squared_) && !nearest.has_unknown;
                break;
            case ProximityState::Touching:
                // Else not a single distance was a number.
                outcome.is_judged = outcome.touches;
                break;
            default:
                break;
        }
    }

    const AABBHierarchy& first_;
    const AABBHierarchy& second_;
    RelativeFrame frame_;
    double clearance_squared_;
    ProximityFinding finding_;
};

}  // namespace

ProximityFinding SearchProximity(const AABBHierarchy& first, const AABBHierarchy& second, double clearance) {
    if (first.Root().IsEmpty() || second.Root().IsEmpty()) {
        // Infinitely far away.
        ProximityFinding finding;
        finding.outcome.bound = ClampedSquare(clearance);
        return finding;
    }
    return ProximitySearch(first, second, clearance).Run();
}

}  // namespace tarn::details
