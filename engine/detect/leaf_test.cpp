#include "detect/leaf_test.h"

#include "core/parallel.h"
#include "core/triangle_intersection.h"

namespace tarn::details {

namespace {

/// Triangles of two leaves together from which on their records are prepared as two tasks. A record takes
/// some 5 ns, handing work to another thread several microseconds.
constexpr std::size_t kParallelPreparation = 4096;

}  // namespace

// The inline records are left uninitialised: preparation writes what a test reads.
LeafTest::LeafTest(std::size_t first_leaf_number, std::size_t second_leaf_number)  // NOLINT: see above
    : records_(inline_records_.data()) {
    const std::size_t count = first_leaf_number + second_leaf_number;
    if (count <= kInlineRecords) return;
    heap_records_ = std::make_unique_for_overwrite<Record[]>(count);
    records_ = heap_records_.get();
}

void LeafTest::Prepare(std::span<const Triangle> leaf, Record* records) {
    for (const Triangle& triangle : leaf) *records++ = {triangle, PlaneOf(triangle)};
}

TriangleHit LeafTest::FindFirstHit(std::span<const Triangle> first_leaf,
                                   std::span<const Triangle> second_leaf) {
    Record* const first_records = records_;
    Record* const second_records = records_ + first_leaf.size();
    if (first_leaf.size() + second_leaf.size() >= kParallelPreparation) {
        ParallelInvoke([&] { Prepare(first_leaf, first_records); },
                       [&] { Prepare(second_leaf, second_records); });
    } else {
        Prepare(first_leaf, first_records);
        Prepare(second_leaf, second_records);
    }
    for (std::size_t i = 0; i < first_leaf.size(); ++i) {
        const Record& first = first_records[i];
        for (std::size_t j = 0; j < second_leaf.size(); ++j) {
            const Record& second = second_records[j];
            // The second body's triangle comes first: near contact the order decides.
            if (TrianglesIntersect(second.triangle, second.plane, first.triangle, first.plane)) {
                return {&first_leaf[i], &second_leaf[j]};
            }
        }
    }
    return {};
}

}  // namespace tarn::details
