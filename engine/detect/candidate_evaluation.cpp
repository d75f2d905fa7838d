#include "detect/candidate_evaluation.h"

#include "core/box_distance.h"
#include "core/parallel.h"

#include <algorithm>
#include <cmath>

namespace tarn::details {

namespace {

/// Candidates held at once: two megabytes.
constexpr std::size_t kBatch = std::size_t{1} << 16;
/// Of a batch, the nearest few are evaluated first: they mostly leave nothing else to do. Each further round
/// is twice as large.
constexpr std::size_t kFirstRound = 8;
/// Candidates that a task evaluates without being split further: with the usual leaves some 1 to 50 us.
constexpr std::size_t kCandidateChunk = 16;

/// See `CandidateEvaluation`.
double RoundingSlack(const Box& a, const Box& b) {
    constexpr double kRoundings = 64.0 * 0x1p-53;
    const Vector3 min = Min(a.min, b.min);
    const Vector3 max = Max(a.max, b.max);
    const double diagonal = std::sqrt(LengthSquared(max - min));
    const Vector3 reach = Max(max, -1.0 * min);
    const double largest = std::max({reach.x, reach.y, reach.z});
    return kRoundings * diagonal * (diagonal + largest);
}

}  // namespace

CandidateEvaluation::CandidateEvaluation(const AABBHierarchy& first,
                                         const AABBHierarchy& second,
                                         double clearance_squared)
    : first_(first),
      second_(second),
      clearance_squared_(clearance_squared),
      slack_(RoundingSlack(first.WorldBox(first.Root()), second.WorldBox(second.Root()))) {}

void CandidateEvaluation::Add(const NodePair& leaves, double box_distance_squared) {
    const std::uint64_t number = added_count_++;
    if (CannotWin(box_distance_squared)) return;
    batch_.push_back({leaves, box_distance_squared, number});
    if (batch_.size() == kBatch) EvaluateBatch();
}

const NearestTriangles& CandidateEvaluation::Finish() {
    EvaluateBatch();
    return nearest_;
}

void CandidateEvaluation::EvaluateBatch() {
    std::span<Candidate> rest(batch_);
    for (std::size_t size = kFirstRound; !rest.empty(); size *= 2) {
        const std::span<Candidate> round = rest.first(std::min(size, rest.size()));
        std::ranges::nth_element(rest, round.end() - 1, {}, &Candidate::box_distance_squared);
        const bool is_done = std::ranges::all_of(
            round, [this](const Candidate& candidate) { return CannotWin(candidate.box_distance_squared); });
        if (is_done) break;
        EvaluateRound(round);
        rest = rest.subspan(round.size());
    }
    batch_.clear();
}

void CandidateEvaluation::EvaluateRound(std::span<const Candidate> round) {
    measured_.assign(round.size(), {});
    ParallelFor(round.size(), kCandidateChunk, [&](std::size_t begin, std::size_t end) {
        std::vector<MeasuredTriangle> second_triangles;  // room for one leaf after the other
        for (std::size_t i = begin; i < end; ++i) {
            if (!CannotWin(round[i].box_distance_squared))
                measured_[i] = Evaluate(round[i], second_triangles);
        }
    });
    for (const NearestTriangles& measured : measured_) {
        const bool touches = nearest_.touches || measured.touches;
        const bool has_unknown = nearest_.has_unknown || measured.has_unknown;
        if (measured.WinsOver(nearest_)) nearest_ = measured;
        nearest_.touches = touches;
        nearest_.has_unknown = has_unknown;
    }
}

NearestTriangles CandidateEvaluation::Evaluate(const Candidate& candidate,
                                               std::vector<MeasuredTriangle>& second_triangles) const {
    NearestTriangles nearest;
    nearest.number = candidate.number;
    second_triangles.clear();
    const auto second_leaf = second_.WorldTriangles(*candidate.leaves.second);
    second_triangles.reserve(second_leaf.size());
    for (const Triangle& triangle : second_leaf) second_triangles.emplace_back(triangle);
    for (const Triangle& triangle : first_.WorldTriangles(*candidate.leaves.first)) {
        const MeasuredTriangle first(triangle);
        for (std::size_t j = 0; j < second_leaf.size(); ++j) {
            const MeasuredTriangle& second = second_triangles[j];
            const double box_distance_squared = BoxDistanceSquared(first.box, second.box);
            if (CannotWin(box_distance_squared)) continue;
            if (nearest.is_valid && CannotWin(box_distance_squared, nearest.distance_squared)) continue;
            const TrianglePairDistance distance = TrianglePairDistanceBound(first.edges, second.edges);
            if (distance.distance_squared < kTouchDistanceSquared) {
                NearestTriangles touching;
                touching.touches = true;
                return touching;
            }
            if (std::isnan(distance.distance_squared)) {
                if (!(box_distance_squared > clearance_squared_)) nearest.has_unknown = true;
                continue;
            }
            if (nearest.is_valid && !(distance.distance_squared < nearest.distance_squared)) continue;
            nearest.is_valid = true;
            nearest.distance_squared = distance.distance_squared;
            nearest.triangles = {&triangle, &second_leaf[j]};
            nearest.parameters = distance;
        }
    }
    return nearest;
}

}  // namespace tarn::details
