#pragma once

#include "core/parallel.h"
#include "detect/broad_phase.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace tarn::details {

/// A couple that a loop has found, by its position in the couple order.
template <typename Finding>
struct CoupleHit {
    std::size_t position;
    Finding finding;
};

/// Calls `look(couple)` for every couple selected, in parallel, or until the first finding. Returns the
/// findings in couple order; where the loop stops at the first, just one, whichever thread was first.
template <typename Finding, typename Couples, typename Look>
std::vector<CoupleHit<Finding>> FindInCouples(const Couples& couples,
                                              const CoupleSelection& selection,
                                              bool stops_at_first_hit,
                                              Look look) {
    // A couple whose boxes are apart takes some tens of nanoseconds, one that is close takes microseconds to
    // milliseconds and deserves a task of its own.
    constexpr std::size_t kCoupleChunk = 1;
    using Hits = std::vector<CoupleHit<Finding>>;
    Combinable<Hits> hits_per_thread;
    CancellationSource cancellation;
    ParallelFor(selection.size(), kCoupleChunk, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end && !cancellation.IsCancelled(); ++i) {
            const std::size_t position = selection[i];
            std::optional<Finding> finding = look(couples[position]);
            if (!finding) continue;
            if (stops_at_first_hit) cancellation.Cancel();
            hits_per_thread.Local().push_back({position, *std::move(finding)});
        }
    });
    Hits hits;
    hits_per_thread.ForEach(
        [&hits](const Hits& local) { hits.insert(hits.end(), local.begin(), local.end()); });
    std::ranges::sort(hits, {}, &CoupleHit<Finding>::position);
    // Several threads may have found something before they heard of the first.
    if (stops_at_first_hit && hits.size() > 1) hits.erase(hits.begin() + 1, hits.end());
    return hits;
}

}  // namespace tarn::details
