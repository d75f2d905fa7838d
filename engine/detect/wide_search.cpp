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

/// One over the sine between two directions, or 0 where they are nearly parallel. In depth, where it only
/// matters whether a gap is positive, 1 serves as well: a cross product is no longer than that.
float InverseSine(const RelativeFrame& frame, SearchOrder order, double cosine) {
    if (order == SearchOrder::InDepth) return 1.0F;
    // Axes that are not quite unit vectors have a cross product that is longer than the sine.
    const double sine_squared = 1.0 - cosine * cosine + 8.0 * frame.Skew();
    const double inverse = sine_squared > kSmallestSineSquared ? 1.0 / std::sqrt(sine_squared) : 0.0;
    return static_cast<float>(inverse * (1.0 - 0x1p-22));
}

WideView ViewFromFirst(const RelativeFrame& frame, SearchOrder order) {
    WideView view{};
    view.margin = static_cast<float>(frame.WideMargin() * (1.0 + 0x1p-22));
    for (int i = 0; i < 3; ++i) {
        view.offset[i] = static_cast<float>(frame.Offset()[i]);
        for (int j = 0; j < 3; ++j) {
            const double r = frame.Rotation()[i][j];
            view.rotation[i][j] = static_cast<float>(r);
            view.magnitude[i][j] = static_cast<float>(std::abs(r));
            view.inverse_sine[i][j] = InverseSine(frame, order, r);
        }
    }
    return view;
}

/// The same from the other side.
WideView ViewFromSecond(const RelativeFrame& frame, const WideView& from_first) {
    WideView view{};
    view.margin = from_first.margin;
    const auto& r = frame.Rotation();
    const Vector3& t = frame.Offset();
    for (int i = 0; i < 3; ++i) {
        view.offset[i] = static_cast<float>(-(r[0][i] * t.x + r[1][i] * t.y + r[2][i] * t.z));
        for (int j = 0; j < 3; ++j) {
            view.rotation[i][j] = from_first.rotation[j][i];
            view.magnitude[i][j] = from_first.magnitude[j][i];
            view.inverse_sine[i][j] = from_first.inverse_sine[j][i];
        }
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
    const WideView from_first = ViewFromFirst(frame, order);
    const WideTask task{order, first, second, from_first, ViewFromSecond(frame, from_first), limit, visit};
    constexpr std::size_t kUsualDepth = 128;
    std::vector<WidePair> pending;
    pending.reserve(kUsualDepth);
    pending.push_back({WideHierarchy::kRoot, WideHierarchy::kRoot, 0.0F, 0.0F});
    Search(task, pending, kSplitLevels);
}

}  // namespace tarn::details
