#pragma once

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "core/triangle_distance.h"
#include "detect/leaf_test.h"
#include "detect/pair_descent.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

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
    std::uint64_t number = 0;  ///< of the leaf pair, in traversal order
    TriangleHit triangles;
    TrianglePairDistance parameters{};

    /// Whether this one is the one to choose: the smaller distance, the earlier leaf pair if they are equal.
    bool WinsOver(const NearestTriangles& other) const {
        if (!is_valid || !other.is_valid) return is_valid;
        return distance_squared < other.distance_squared ||
               (distance_squared == other.distance_squared && number < other.number);
    }
};

/// Measures the leaf pairs that a search retains and keeps the nearest one. The leaf pairs are taken in
/// batches, so that memory stays bounded whatever the bound retains; within a batch the nearest boxes come
/// first, in parallel where there are many.
///
/// What cannot win is left out. The measured squared distance of two triangles can lie a little below the
/// squared distance of their boxes, because the region formulas cancel. With U the diagonal of the union of
/// both bodies' boxes and M their largest coordinate by magnitude, every term of these formulas is a product
/// of two lengths up to U, and the points between which they measure lie off their triangles by a few
/// roundings of M: some tens of roundings of U (U + M) in all. So where
///     squared box distance - 64 * 2^-53 * U (U + M) > best
/// the measured distance is above the best, strictly: the pair is neither chosen nor a tie. It does not touch
/// either, as a valid best is at least the touch threshold: every touching pair is met. And where the best
/// ends up beyond the clearance, every pair is met whose boxes are not. A comparison with NaN leaves nothing
/// out.
class CandidateEvaluation {
public:
    CandidateEvaluation(const AABBHierarchy& first, const AABBHierarchy& second, double clearance_squared);
    CandidateEvaluation(const CandidateEvaluation&) = delete;
    CandidateEvaluation& operator=(const CandidateEvaluation&) = delete;

    /// Takes the next leaf pair in traversal order.
    void Add(const NodePair& leaves, double box_distance_squared);

    /// The nearest triangles of all leaf pairs added that do not touch, and whether any touches.
    const NearestTriangles& Finish();

    std::uint64_t added_count() const { return added_count_; }

private:
    /// What a leaf's triangles are measured by.
    struct MeasuredTriangle {
        EdgeForm edges;
        Box box;

        explicit MeasuredTriangle(const Triangle& triangle) : edges(triangle), box(TriangleBox(triangle)) {}
    };
    struct Candidate {
        NodePair leaves;
        double box_distance_squared;
        std::uint64_t number;
    };

    bool CannotWin(double box_distance_squared, double best) const {
        return box_distance_squared - slack_ > best;
    }
    bool CannotWin(double box_distance_squared) const {
        return nearest_.is_valid && CannotWin(box_distance_squared, nearest_.distance_squared);
    }
    void EvaluateBatch();
    void EvaluateRound(std::span<const Candidate> round);
    NearestTriangles Evaluate(const Candidate& candidate,
                              std::vector<MeasuredTriangle>& second_triangles) const;

    const AABBHierarchy& first_;
    const AABBHierarchy& second_;
    double clearance_squared_;
    double slack_;
    std::uint64_t added_count_ = 0;
    std::vector<Candidate> batch_;
    std::vector<NearestTriangles> measured_;  ///< of a round
    NearestTriangles nearest_;
};

}  // namespace tarn::details
