#include "core/aabb_hierarchy.h"

#include <limits>
#include <thread>

namespace tarn::details {

namespace {

constexpr std::uint32_t kNeverRefreshed = 0;
constexpr std::uint32_t kClaimed = std::numeric_limits<std::uint32_t>::max();

/// How often a waiting thread looks before it yields. A refresh takes some tens of nanoseconds, unless the
/// thread that does it was suspended.
constexpr int kLooksBeforeYield = 64;

/// Brings what `node_generation` guards from some older generation to `generation`, on exactly one thread.
/// The others return once it is there. `refresh` must not fail, or they would wait for ever.
template <typename Refresh>
void RefreshOnce(std::atomic<std::uint32_t>& node_generation,
                 std::uint32_t generation,
                 Refresh refresh) noexcept {
    static_assert(noexcept(refresh()));
    int looks = 0;
    // Acquire: what the publishing thread wrote is seen once its number is.
    std::uint32_t seen = node_generation.load(std::memory_order_acquire);
    while (seen != generation) {
        if (seen == kClaimed) {
            if (++looks % kLooksBeforeYield == 0) std::this_thread::yield();
            seen = node_generation.load(std::memory_order_acquire);
        } else if (node_generation.compare_exchange_weak(seen, kClaimed, std::memory_order_acquire,
                                                         std::memory_order_acquire)) {
            refresh();
            // Release: publishes the world data just written.
            node_generation.store(generation, std::memory_order_release);
            return;
        }
    }
}

}  // namespace

void AABBHierarchy::RefreshWorldBox(const AABBHierarchyNode& node) const {
    RefreshOnce(node.box_generation_, generation_, [&]() noexcept {
        if (node.IsEmpty()) return;
        // The extent sum stays unwritten: others may be reading it.
        const Box moved = Place(*placement_, node.LocalBox());
        node.world_box_.min = moved.min;
        node.world_box_.max = moved.max;
    });
}

void AABBHierarchy::RefreshWorldTriangles(const AABBHierarchyNode& node) const {
    RefreshOnce(node.triangles_generation_, generation_, [&]() noexcept {
        const std::size_t begin = node.FirstTriangle();
        const std::size_t end = begin + node.triangle_count_;
        for (std::size_t i = begin; i < end; ++i)
            world_triangles_[i] = Place(*placement_, local_triangles_[i]);
    });
}

void AABBHierarchy::MarkStale() {
    ++generation_;
    if (generation_ != kClaimed) return;
    // The counter has come round: start again, so that no node passes for fresh by an ancient number.
    generation_ = kNeverRefreshed + 1;
    for (std::size_t i = 0; i < node_count_; ++i) {
        nodes_[i].box_generation_.store(kNeverRefreshed, std::memory_order_relaxed);
        nodes_[i].triangles_generation_.store(kNeverRefreshed, std::memory_order_relaxed);
    }
}

}  // namespace tarn::details
