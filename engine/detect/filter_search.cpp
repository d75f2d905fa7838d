#include "detect/filter_search.h"

#include "core/aabb_hierarchy.h"
#include "core/parallel.h"
#include "detect/filter_step.h"
#include "detect/relative_frame.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

namespace tarn::details {

namespace {

/// Looks after which a search is split over threads: a fraction of a millisecond.
constexpr std::size_t kBudget = 4096;
/// Splits within splits. Every one of them makes work for a handful of threads, so there are enough.
constexpr int kSplitLevels = 8;

FilterView ViewFromFirst(const RelativeFrame& frame) {
    FilterView view{};
    for (int i = 0; i < 3; ++i) {
        view.offset[i] = static_cast<float>(frame.Offset()[i]);
        for (int j = 0; j < 3; ++j) view.rotation[i][j] = static_cast<float>(frame.Rotation()[i][j]);
    }
    return view;
}

FilterView ViewFromSecond(const RelativeFrame& frame) {
    FilterView view{};
    const auto& r = frame.Rotation();
    const Vector3& t = frame.Offset();
    for (int i = 0; i < 3; ++i) {
        view.offset[i] = static_cast<float>(-(r[0][i] * t.x + r[1][i] * t.y + r[2][i] * t.z));
        for (int j = 0; j < 3; ++j) view.rotation[i][j] = static_cast<float>(r[j][i]);
    }
    return view;
}

/// Works pending pairs off. Those left when the budget is spent are distributed, the most urgent ones first.
void Search(const FilterTask& task, std::vector<FilterPair>& pending, int split_levels) {
    WorkOff(task, pending, split_levels > 0 ? kBudget : std::numeric_limits<std::size_t>::max());
    if (pending.empty()) return;
    std::ranges::sort(pending, {}, &FilterPair::urgency);
    constexpr std::size_t kPairChunk = 1;
    ParallelFor(pending.size(), kPairChunk, [&](std::size_t begin, std::size_t end) {
        std::vector<FilterPair> part;
        for (std::size_t i = begin; i < end; ++i) {
            part.assign(1, pending[i]);
            Search(task, part, split_levels - 1);
        }
    });
}

}  // namespace

void VisitNearTriangles(const AABBHierarchy& first,
                        const AABBHierarchy& second,
                        const RelativeFrame& frame,
                        SearchGoal goal,
                        SearchLimit& limit,
                        TrianglePairVisitor visit) {
    const double margin = goal == SearchGoal::Crossings ? frame.NarrowCrossingMargin() : frame.NarrowMargin();
    const FilterTask task{goal,
                          *first.Filter(),
                          *second.Filter(),
                          ViewFromFirst(frame),
                          ViewFromSecond(frame),
                          static_cast<float>(margin * (1.0 + 0x1p-22)),
                          limit,
                          visit};
    constexpr std::size_t kUsualDepth = 128;
    std::vector<FilterPair> pending;
    pending.reserve(kUsualDepth);
    pending.push_back({OBBHierarchy::kRoot, OBBHierarchy::kRoot, 0.0F, 0.0F});
    Search(task, pending, kSplitLevels);
}

}  // namespace tarn::details
