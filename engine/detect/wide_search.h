#pragma once

#include "core/function_ref.h"
#include "detect/pair_descent.h"

#include <atomic>
#include <cstdint>

namespace tarn::details {

class RelativeFrame;

/// How far a search looks: the squared distance beyond which leaves are of no interest any more. Those who
/// visit leaf pairs may lower it; a negative one ends the search. Safe from any thread.
class SearchLimit {
public:
    explicit SearchLimit(double squared) : squared_(squared) {}

    double Squared() const { return squared_.load(std::memory_order_relaxed); }
    /// Has no effect where the limit is that low already.
    void LowerTo(double squared) {
        double seen = Squared();
        while (squared < seen && !squared_.compare_exchange_weak(seen, squared, std::memory_order_relaxed)) {
        }
    }
    void EndSearch() { LowerTo(-1.0); }

private:
    /// Relaxed order: a limit only saves work; what was found travels with the end of the search.
    std::atomic<double> squared_;
};

/// What a search looks at next. Both are heuristics: leaf pairs come in no order to rely on.
enum class SearchOrder : std::uint8_t {
    InDepth,    ///< down where the overlap is deepest: for searches that end with the first find
    ByNearness  ///< the nearest of all that is pending: for those that look for the least distance
};

/// Descends the wide trees of two hierarchies together and visits their pairs of leaves. Left out are
/// leaf pairs that the frame, which is rigid, shows to be farther apart than the limit; with a limit of 0,
/// those that it shows apart. Eight boxes are tested at a time, in single precision, by the widest
/// instructions of the processor that runs it; so which pairs more than the near ones are visited depends on
/// the machine.
///
/// A search that turns out to be long is split over threads: `visit` is called from several at a time then.
void VisitNearLeafPairs(const AABBHierarchy& first,
                        const AABBHierarchy& second,
                        const RelativeFrame& frame,
                        SearchOrder order,
                        SearchLimit& limit,
                        FunctionRef<void(const NodePair& leaves)> visit);

}  // namespace tarn::details
