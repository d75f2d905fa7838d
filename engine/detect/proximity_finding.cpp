#include "detect/proximity_finding.h"

#include <cmath>
#include <limits>

namespace tarn::details {

namespace {

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

}  // namespace

double ClampedSquare(double clearance) {
    static const double largest = std::sqrt(std::numeric_limits<double>::max());
    if (clearance > largest) clearance = largest;
    return clearance * clearance;
}

ProximityFinding FindingBeyond(double clearance_squared) {
    ProximityFinding finding;
    finding.outcome.bound = clearance_squared;
    return finding;
}

ProximityFinding FindingOfCrossing(double clearance_squared) {
    ProximityFinding finding = FindingBeyond(clearance_squared);
    finding.outcome.state = ProximityState::Intersecting;
    return finding;
}

ProximityFinding FindingOf(const NearestTriangles& nearest,
                           double clearance_squared,
                           double bound,
                           std::uint64_t retained_count) {
    ProximityFinding finding = FindingBeyond(bound);
    ProximityOutcome& outcome = finding.outcome;
    outcome.retained_count = retained_count;
    outcome.touches = nearest.touches;
    if (nearest.is_valid) {
        outcome.state = StateOf(nearest.distance_squared, clearance_squared);
        outcome.distance = std::sqrt(nearest.distance_squared);
        outcome.segment = SegmentOf(nearest);
        finding.triangles = nearest.triangles;
    } else if (retained_count > 0) {
        outcome.state = ProximityState::Touching;
    }
    switch (outcome.state) {
        case ProximityState::BeyondClearance:
            // Under the full clearance, what was left out lies beyond it.
            outcome.is_judged = !(bound < clearance_squared) && !nearest.has_unknown;
            break;
        case ProximityState::Touching:
            // Else not a single distance was a number.
            outcome.is_judged = outcome.touches;
            break;
        default:
            break;
    }
    return finding;
}

}  // namespace tarn::details
