#pragma once

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "core/box_distance.h"
#include "core/triangle_distance.h"
#include "detect/plain_check.h"

#include "tarn/proximity_outcome.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace tarn::test {

/// The clearance search told once more without any thought of speed: boxes and triangles are computed from
/// the placement when they are looked at, on one thread; all pairs of leaves are walked, all pairs of
/// triangles in those retained are measured.
struct PlainFinding {
    ProximityOutcome outcome;
    TriangleDataPair triangles{};  ///< where a distance was measured
    std::size_t winner_count = 0;  ///< leaf pairs with just that distance
};

struct PlacedNode {
    const details::AABBHierarchyNode* node;
    const MATRIX* placement;

    bool IsLeaf() const { return node->IsLeaf(); }
    details::Box Box() const { return Place(*placement, node->LocalBox()); }
    PlacedNode FirstChild() const { return {node->FirstChild(), placement}; }
    PlacedNode SecondChild() const { return {node->SecondChild(), placement}; }
    std::vector<details::Triangle> Triangles() const { return PlainWorldTriangles(*node, *placement); }
};

inline PlacedNode PlacedRoot(const details::CollisionBody& body) {
    return {&body.Hierarchy()->Root(), &body.CurrentMatrix()};
}

inline double PlainBoxDistanceSquared(const PlacedNode& a, const PlacedNode& b) {
    if (a.node->IsEmpty() || b.node->IsEmpty()) return std::numeric_limits<double>::infinity();
    const details::Box x = a.Box();
    const details::Box y = b.Box();
    double sum = 0.0;
    for (const int axis : {0, 1, 2}) {
        const double gap = x.min[axis] > y.max[axis]   ? x.min[axis] - y.max[axis]
                           : y.min[axis] > x.max[axis] ? y.min[axis] - x.max[axis]
                                                       : 0.0;
        sum += gap * gap;
    }
    return sum;
}

inline double PlainCentreDistanceSquared(const PlacedNode& a, const PlacedNode& b) {
    if (a.node->IsEmpty() || b.node->IsEmpty()) return std::numeric_limits<double>::infinity();
    const details::Box x = a.Box();
    const details::Box y = b.Box();
    double sum = 0.0;
    for (const int axis : {0, 1, 2}) {
        const double difference = (x.min[axis] + x.max[axis]) - (y.min[axis] + y.max[axis]);
        sum += difference * difference;
    }
    return sum * 0.25;
}

/// Comparisons decide what becomes of NaN: it is smaller and larger than nothing.
inline double PlainTightenedBound(const PlacedNode& a, const PlacedNode& b, double bound) {
    const double centres = PlainCentreDistanceSquared(a, b);
    if (centres < bound) bound = centres;
    if (PlainBoxDistanceSquared(a, b) > bound || (a.IsLeaf() && b.IsLeaf())) return bound;
    const double one = b.IsLeaf() ? PlainTightenedBound(a.FirstChild(), b, bound)
                                  : PlainTightenedBound(a, b.FirstChild(), bound);
    const double other = b.IsLeaf() ? PlainTightenedBound(a.SecondChild(), b, bound)
                                    : PlainTightenedBound(a, b.SecondChild(), bound);
    return other < one ? other : one;
}

using PlainLeafPairs = std::vector<std::pair<PlacedNode, PlacedNode>>;

/// All pairs of leaves in traversal order.
inline void CollectPlainLeafPairs(const PlacedNode& a, const PlacedNode& b, PlainLeafPairs& pairs) {
    if (a.IsLeaf() && b.IsLeaf()) {
        pairs.emplace_back(a, b);
    } else if (b.IsLeaf() ||
               (!a.IsLeaf() && a.node->LocalBox().extent_sum >= b.node->LocalBox().extent_sum)) {
        CollectPlainLeafPairs(a.FirstChild(), b, pairs);
        CollectPlainLeafPairs(a.SecondChild(), b, pairs);
    } else {
        CollectPlainLeafPairs(a, b.FirstChild(), pairs);
        CollectPlainLeafPairs(a, b.SecondChild(), pairs);
    }
}

struct PlainCandidate {
    bool is_valid = false;
    bool touches = false;
    bool has_unknown = false;
    double distance_squared = -1.0;
    SegmentData segment{};
    TriangleDataPair triangles{};
};

inline PlainCandidate PlainMeasure(const std::vector<details::Triangle>& first,
                                   const std::vector<details::Triangle>& second,
                                   double clearance_squared) {
    PlainCandidate best;
    for (const details::Triangle& i : first) {
        for (const details::Triangle& j : second) {
            const details::EdgeForm a(i);
            const details::EdgeForm b(j);
            const auto found = TrianglePairDistanceBound(a, b);
            if (found.distance_squared < 0.001) return {.touches = true};
            if (std::isnan(found.distance_squared)) {
                if (!(BoxDistanceSquared(TriangleBox(i), TriangleBox(j)) > clearance_squared))
                    best.has_unknown = true;
                continue;
            }
            if (best.is_valid && !(found.distance_squared < best.distance_squared)) continue;
            const details::Vector3 p = a.PointAt(found.s1, found.t1);
            const details::Vector3 q = b.PointAt(found.s2, found.t2);
            best = {true,  false, best.has_unknown, found.distance_squared, {p.x, p.y, p.z, q.x, q.y, q.z},
                    {i, j}};
        }
    }
    return best;
}

inline PlainFinding PlainProximity(const details::CollisionBody& first,
                                   const details::CollisionBody& second,
                                   double clearance) {
    const PlacedNode root_a = PlacedRoot(first);
    const PlacedNode root_b = PlacedRoot(second);
    const double largest = std::sqrt(std::numeric_limits<double>::max());
    const double clamped = clearance > largest ? largest : clearance;
    const double clearance_squared = clamped * clamped;

    PlainFinding finding;
    ProximityOutcome& outcome = finding.outcome;
    outcome.bound = PlainTightenedBound(root_a, root_b, clearance_squared);
    PlainLeafPairs leaf_pairs;
    CollectPlainLeafPairs(root_a, root_b, leaf_pairs);
    PlainLeafPairs retained;
    for (const auto& [a, b] : leaf_pairs) {
        const double box_distance_squared = PlainBoxDistanceSquared(a, b);
        const bool is_retained = outcome.bound > box_distance_squared;
        // With a bound of 0 nothing is retained, but what crosses is found all the same.
        if (!is_retained && (outcome.bound > 0.0 || box_distance_squared != 0.0)) continue;
        std::vector<TriangleDataPair> hits;
        CollectPlainHits(a.Triangles(), b.Triangles(), hits);
        if (!hits.empty()) {
            finding.outcome = {};
            outcome.state = ProximityState::Intersecting;
            outcome.bound = clearance_squared;
            return finding;
        }
        if (is_retained) retained.emplace_back(a, b);
    }
    outcome.retained_count = retained.size();

    PlainCandidate best;
    bool has_unknown = false;
    for (const auto& [a, b] : retained) {
        const PlainCandidate candidate = PlainMeasure(a.Triangles(), b.Triangles(), clearance_squared);
        if (candidate.touches) outcome.touches = true;
        if (candidate.has_unknown) has_unknown = true;
        if (!candidate.is_valid) continue;
        const bool is_nearest = !best.is_valid || candidate.distance_squared < best.distance_squared;
        if (is_nearest) finding.winner_count = 0;
        if (is_nearest || candidate.distance_squared == best.distance_squared) ++finding.winner_count;
        if (is_nearest) best = candidate;
    }
    if (best.is_valid && !(best.distance_squared > clearance_squared)) {
        outcome.state = ProximityState::WithinClearance;
    } else if (best.is_valid || retained.empty()) {
        outcome.state = ProximityState::BeyondClearance;
        outcome.is_judged = !(outcome.bound < clearance_squared) && !has_unknown;
    } else {
        outcome.state = ProximityState::Touching;
        outcome.is_judged = outcome.touches;
    }
    if (!best.is_valid) return finding;
    outcome.distance = std::sqrt(best.distance_squared);
    outcome.segment = best.segment;
    finding.triangles = best.triangles;
    return finding;
}

}  // namespace tarn::test
