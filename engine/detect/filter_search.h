#pragma once

#include "core/function_ref.h"

#include <atomic>
#include <cstdint>

namespace tarn::details {

class AABBHierarchy;
class RelativeFrame;

/// How far a search looks: the squared distance beyond which triangles are of no interest any more. Those who
/// visit triangle pairs may lower it; a negative one ends the search. Safe from any thread.
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

/// What a search in filter trees looks for. The order in which it looks is a heuristic: triangle pairs come in
/// no order to rely on.
enum class SearchGoal : std::uint8_t {
    Crossings,  ///< what may intersect, down where the overlap is deepest: for searches that end with the first find
    Nearest  ///< what is nearer than the limit, the nearest of all that is pending first
};

/// A triangle of a hierarchy by its number, in the order of the leaves, and the node index of its leaf.
struct LeafTriangle {
    std::uint32_t triangle;
    std::uint32_t leaf;
};

/// Called with a triangle of either hierarchy.
using TrianglePairVisitor = FunctionRef<void(const LeafTriangle& first, const LeafTriangle& second)>;

/// Descends the filter trees of two hierarchies together and visits pairs of triangles. Looking for crossings,
/// it leaves out only what the frame, which is rigid, shows to be apart such that it is no hit by the rule;
/// the limit is 0 then. Looking for the nearest, only what is farther apart than the limit. Eight boxes or
/// four triangles are tested at a time, in single precision, by the widest instructions of the processor that
/// runs it; so which pairs more than the near ones are visited depends on the machine.
///
/// A search that turns out to be long is split over threads: `visit` is called from several at a time then.
void VisitNearTriangles(const AABBHierarchy& first,
                        const AABBHierarchy& second,
                        const RelativeFrame& frame,
                        SearchGoal goal,
                        SearchLimit& limit,
                        TrianglePairVisitor visit);

}  // namespace tarn::details
