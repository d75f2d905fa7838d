#include "detect/wide_search.h"

#include "core/aabb_hierarchy.h"
#include "core/parallel.h"
#include "detect/relative_frame.h"
#include "detect/wide_step.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace tarn::details {

namespace {

/// Looks after which a search is split over threads: a fraction of a millisecond.
constexpr std::size_t kBudget = 8192;
/// Splits within splits. Every one of them makes work for a handful of threads, so there are enough.
constexpr int kSplitLevels = 8;
/// Sines below this make no direction.
constexpr double kSmallestSineSquared = 1e-3;

/// Half of a view: the matrices, for the rotation that `rotation(i, j)` gives.
template <typename Rotation>
WideView ViewOf(const RelativeFrame& frame, Rotation rotation) {
    WideView view{};
    view.margin = static_cast<float>(frame.WideMargin() * (1.0 + 0x1p-22));
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            const double r = rotation(i, j);
            view.rotation[i][j] = static_cast<float>(r);
            view.magnitude[i][j] = static_cast<float>(std::abs(r));
            // Axes that are not quite unit vectors have a cross product that is longer than the sine.
            const double sine_squared = 1.0 - r * r + 8.0 * frame.Skew();
            const double inverse = sine_squared > kSmallestSineSquared ? 1.0 / std::sqrt(sine_squared) : 0.0;
            view.inverse_sine[i][j] = static_cast<float>(inverse * (1.0 - 0x1p-22));
        }
    }
    return view;
}

WideView ViewFromFirst(const RelativeFrame& frame) {
    const auto& r = frame.Rotation();
    WideView view = ViewOf(frame, [&](int i, int j) { return r[i][j]; });
    for (int i = 0; i < 3; ++i) view.offset[i] = static_cast<float>(frame.Offset()[i]);
    return view;
}

WideView ViewFromSecond(const RelativeFrame& frame) {
    const auto& r = frame.Rotation();
    WideView view = ViewOf(frame, [&](int i, int j) { return r[j][i]; });
    const Vector3& t = frame.Offset();
    for (int i = 0; i < 3; ++i) {
        view.offset[i] = static_cast<float>(-(r[0][i] * t.x + r[1][i] * t.y + r[2][i] * t.z));
    }
    return view;
}

/// Works pending pairs off. Those left when the budget is spent are distributed, the most urgent ones first.
void Search(const WideTask& task, std::vector<WidePair>& pending, int split_levels) {
    WorkOff(task, pending, split_levels > 0 ? kBudget : std::numeric_limits<std::size_t>::max());
    if (pending.empty()) return;
    std::ranges::sort(pending, {}, &WidePair::urgency);
    constexpr std::size_t kPairChunk = 1;
    ParallelFor(pending.size(), kPairChunk, [&](std::size_t begin, std::size_t end) {
        std::vector<WidePair> part;
        for (std::size_t i = begin; i < end; ++i) {
            part.assign(1, pending[i]);
            Search(task, part, split_levels - 1);
        }
    });
}

}  // namespace

void VisitNearLeafPairs(const AABBHierarchy& first,
                        const AABBHierarchy& second,
                        const RelativeFrame& frame,
                        SearchOrder order,
                        SearchLimit& limit,
                        FunctionRef<void(const NodePair& leaves)> visit) {
    const WideTask task{order, first, second, ViewFromFirst(frame), ViewFromSecond(frame), limit, visit};
    constexpr std::size_t kUsualDepth = 128;
    std::vector<WidePair> pending;
    pending.reserve(kUsualDepth);
    pending.push_back({WideHierarchy::kRoot, WideHierarchy::kRoot, 0.0F, 0.0F});
    Search(task, pending, kSplitLevels);
}

}  // namespace tarn::details
