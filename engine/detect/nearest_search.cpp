#include "detect/nearest_search.h"

#include "core/aabb_hierarchy.h"
#include "core/box_distance.h"
#include "core/triangle.h"
#include "core/triangle_distance.h"
#include "detect/bound_tightening.h"
#include "detect/crossing_search.h"
#include "detect/filter_search.h"
#include "detect/leaf_distance.h"
#include "detect/proximity_search.h"
#include "detect/relative_frame.h"
#include "detect/traversal_order.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <mutex>

namespace tarn::details {

namespace {

/// The best so far, for all threads of a search.
class Nearest {
public:
    /// Distances above `best`, squared, are of no interest.
    Nearest(const AABBHierarchy& first, const AABBHierarchy& second, double best, double slack)
        : first_(first),
          second_(second),
          best_(best),
          slack_(slack),
          limit_(LimitFor(best)) {}

    double Best() const { return best_.load(std::memory_order_relaxed); }
    SearchLimit& Limit() { return limit_; }

    /// Whether leaves that have triangles at this squared distance can be the answer. Of many that are equally
    /// far, as on parallel faces, only those are that come before the best so far.
    bool MayWin(const NodePair& leaves, double distance_squared) {
        const std::lock_guard lock(access_);
        const bool is_dropped = leaves.first == dropped_.first && leaves.second == dropped_.second;
        return !is_dropped && Wins(leaves, distance_squared);
    }

    /// For leaves that touch: the others of their triangles, which often come next, count for nothing.
    void Drop(const NodePair& leaves) {
        const std::lock_guard lock(access_);
        dropped_ = leaves;
    }

    /// The nearest of a leaf pair without a touching one.
    void Add(const NearestTriangles& measured) {
        const std::lock_guard lock(access_);
        if (!Wins(measured.leaves, measured.distance_squared)) return;
        nearest_ = measured;
        best_.store(measured.distance_squared, std::memory_order_relaxed);
        limit_.LowerTo(LimitFor(measured.distance_squared));
    }

    bool Touches() const { return touches_.load(std::memory_order_relaxed); }
    void AddTouching() { touches_.store(true, std::memory_order_relaxed); }

    NearestTriangles Result() const {
        NearestTriangles result = nearest_;
        result.touches = Touches();
        return result;
    }

private:
    /// Touching leaf pairs have to be met whatever the best is.
    double LimitFor(double best) const { return std::max(best, kTouchDistanceSquared) + slack_; }

    bool Wins(const NodePair& leaves, double distance_squared) const {
        if (!nearest_.is_valid) return true;
        return distance_squared < nearest_.distance_squared ||
               (distance_squared == nearest_.distance_squared &&
                ComesBefore(first_, second_, leaves, nearest_.leaves));
    }

    const AABBHierarchy& first_;
    const AABBHierarchy& second_;
    std::mutex access_;
    NearestTriangles nearest_;
    NodePair dropped_{};
    std::atomic<double> best_;
    std::atomic<bool> touches_{false};
    double slack_;
    SearchLimit limit_;
};

/// The search for one couple. None of the trees is empty.
class Search {
public:
    Search(const AABBHierarchy& first, const AABBHierarchy& second, double clearance_squared)
        : first_(first),
          second_(second),
          clearance_squared_(clearance_squared),
          frame_(first, second),
          leaf_distance_(first, second, clearance_squared) {}

    bool IsRigid() const { return frame_.IsRigid(); }

    /// Everything there is to know. Nothing where the nearest triangles are not retained, so that others are
    /// the answer.
    std::optional<ProximityFinding> Measure() {
        const Crossings crossings = SearchCrossings(first_, second_, frame_);
        if (crossings.found) return FindingOfCrossing(clearance_squared_);
        const double bound = TightenBound(first_, second_, clearance_squared_, frame_);
        if (AnyWithin(crossings.beside_boxes, bound)) return FindingOfCrossing(clearance_squared_);
        if (!(bound > 0.0)) return FindingOf({}, clearance_squared_, bound, 0);
        NearestTriangles nearest = NearestUpTo(std::numeric_limits<double>::infinity(), bound);
        if (nearest.is_valid && !IsWithin(BoxDistance(nearest.leaves), bound)) return std::nullopt;
        const bool is_within = nearest.is_valid && nearest.distance_squared <= clearance_squared_;
        const std::uint64_t retained_count = CountRetained(bound, is_within ? nullptr : &nearest.has_unknown);
        return FindingOf(nearest, clearance_squared_, bound, retained_count);
    }

    /// Nothing where there is nothing within the clearance. Else as above.
    enum class Answer : std::uint8_t { Found, Nothing, NotRetained };
    Answer FindWithinClearance(ProximityFinding& finding) {
        const Crossings crossings = SearchCrossings(first_, second_, frame_);
        finding = FindingOfCrossing(clearance_squared_);
        if (crossings.found) return Answer::Found;
        if (!crossings.beside_boxes.empty() &&
            AnyWithin(crossings.beside_boxes, TightenBound(first_, second_, clearance_squared_, frame_)))
            return Answer::Found;
        // Where this does not hold, nothing is retained.
        if (!(clearance_squared_ > 0.0)) return Answer::Nothing;

        const double most = std::max(clearance_squared_, kTouchDistanceSquared);
        const NearestTriangles nearest = NearestUpTo(most, clearance_squared_);
        if (!nearest.is_valid || nearest.distance_squared > clearance_squared_) return Answer::Nothing;
        // The nearest of all is the answer if it is retained: if no centres are nearer than its boxes.
        const double needed = BoxDistance(nearest.leaves);
        const double bound =
            TightenBound(first_, second_, std::min(clearance_squared_, JustAbove(needed)), frame_);
        if (!(bound > 0.0)) return Answer::Nothing;
        if (!IsWithin(needed, bound)) return Answer::NotRetained;
        finding = FindingOf(nearest, clearance_squared_, bound, 1);
        return Answer::Found;
    }

private:
    static double JustAbove(double value) {
        return std::nextafter(value, std::numeric_limits<double>::infinity());
    }

    double BoxDistance(const NodePair& pair) const {
        return BoxDistanceSquared(first_.WorldBox(*pair.first), second_.WorldBox(*pair.second));
    }

    bool AnyWithin(const std::vector<NodePair>& pairs, double bound) const {
        return std::ranges::any_of(pairs,
                                   [&](const NodePair& pair) { return IsWithin(BoxDistance(pair), bound); });
    }

    /// The nearest triangles of all leaf pairs, if their squared distance is not above `most`, and whether any
    /// touch whose boxes are within the bound.
    NearestTriangles NearestUpTo(double most, double bound) {
        Nearest nearest(first_, second_, most, leaf_distance_.Slack());
        const auto visit = [&](const LeafTriangle& a, const LeafTriangle& b) {
            const Triangle a_triangle = Place(first_.Placement(), first_.LocalTriangles()[a.triangle]);
            const Triangle b_triangle = Place(second_.Placement(), second_.LocalTriangles()[b.triangle]);
            const double squared =
                TrianglePairDistanceBound(EdgeForm(a_triangle), EdgeForm(b_triangle)).distance_squared;
            // Also false where they touch: the best is never below the touch threshold.
            if (!(squared <= nearest.Best())) return;
            const NodePair leaves{&first_.Nodes()[a.leaf], &second_.Nodes()[b.leaf]};
            if (squared < kTouchDistanceSquared) {
                if (!nearest.Touches() && IsWithin(BoxDistance(leaves), bound)) nearest.AddTouching();
                return;
            }
            if (!nearest.MayWin(leaves, squared)) return;
            const NearestTriangles measured = leaf_distance_.Measure(leaves, nearest.Best(), Filters::On);
            if (measured.is_valid) nearest.Add(measured);
            if (measured.touches) nearest.Drop(leaves);
        };
        VisitNearTriangles(first_, second_, frame_, SearchGoal::Nearest, nearest.Limit(), visit);
        return nearest.Result();
    }

    /// The number of leaf pairs that are retained. Where `has_unknown` is given, it is set if a distance
    /// between them is no number and may lie within the clearance.
    std::uint64_t CountRetained(double bound, bool* has_unknown) const {
        std::uint64_t count = 0;
        // Below the threshold, a touching pair beyond the clearance, which hides the others, would be missed.
        const double best = std::max(clearance_squared_, kTouchDistanceSquared);
        VisitLeafPairs(
            first_, second_, [&](const NodePair& pair) { return IsWithin(BoxDistance(pair), bound); },
            [&](const NodePair& leaves) {
                ++count;
                if (has_unknown && !*has_unknown && MayBeUnknown(leaves))
                    *has_unknown = leaf_distance_.Measure(leaves, best, Filters::Off).has_unknown;
                return false;
            });
        return count;
    }

    /// Whether the leaves have a triangle without area, from which alone a distance can be no number.
    bool MayBeUnknown(const NodePair& leaves) const {
        const auto has_no_area = [](const Triangle& triangle) {
            const EdgeForm edges(triangle);
            const double b = Dot(edges.edge0, edges.edge1);
            const double area = Dot(edges.edge0, edges.edge0) * Dot(edges.edge1, edges.edge1) - b * b;
            return !(std::abs(area) > 0.0) || !(std::abs(area) < std::numeric_limits<double>::infinity());
        };
        return std::ranges::any_of(first_.WorldTriangles(*leaves.first), has_no_area) ||
               std::ranges::any_of(second_.WorldTriangles(*leaves.second), has_no_area);
    }

    const AABBHierarchy& first_;
    const AABBHierarchy& second_;
    double clearance_squared_;
    RelativeFrame frame_;
    LeafDistance leaf_distance_;
};

/// Whether the roots are too far apart for any search. True for most couples of an assembly.
bool EndAtRoots(const AABBHierarchy& first, const AABBHierarchy& second, double clearance_squared) {
    if (first.Root().IsEmpty() || second.Root().IsEmpty()) return true;
    const double distance = BoxDistanceSquared(first.WorldBox(first.Root()), second.WorldBox(second.Root()));
    return !IsWithin(distance, clearance_squared);
}

}  // namespace

ProximityFinding SearchProximityFast(const AABBHierarchy& first,
                                     const AABBHierarchy& second,
                                     double clearance) {
    const double clearance_squared = ClampedSquare(clearance);
    if (EndAtRoots(first, second, clearance_squared)) return FindingBeyond(clearance_squared);
    Search search(first, second, clearance_squared);
    std::optional<ProximityFinding> finding;
    if (search.IsRigid()) finding = search.Measure();
    return finding ? *finding : SearchProximity(first, second, clearance);
}

std::optional<ProximityFinding> FindWithinClearance(const AABBHierarchy& first,
                                                    const AABBHierarchy& second,
                                                    double clearance) {
    const double clearance_squared = ClampedSquare(clearance);
    if (EndAtRoots(first, second, clearance_squared)) return std::nullopt;
    Search search(first, second, clearance_squared);
    ProximityFinding finding;
    if (search.IsRigid()) {
        const auto answer = search.FindWithinClearance(finding);
        if (answer == Search::Answer::Found) return finding;
        if (answer == Search::Answer::Nothing) return std::nullopt;
    }
    finding = SearchProximity(first, second, clearance);
    return IsReported(finding.outcome) ? std::optional(finding) : std::nullopt;
}

}  // namespace tarn::details
