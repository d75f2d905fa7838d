#include "detect/broad_phase.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "core/parallel.h"

#include <array>
#include <atomic>
#include <cmath>

namespace tarn::details {

namespace {

constexpr std::size_t kBodyChunk = 64;

struct BodyBox {
    /// The sweep's axis first.
    std::array<double, 3> min;
    std::array<double, 3> max;
    const CollisionBody* body;
};

/// Whether a gap on some axis is wider than the reach. The differences round as those of `Gap`, by which the
/// searches decide; so nothing is left out that they would look at.
bool IsBeyond(const BodyBox& a, const BodyBox& b, std::size_t axis, double reach) {
    return a.min[axis] - b.max[axis] > reach || b.min[axis] - a.max[axis] > reach;
}

/// The axis along which the centres vary most.
std::size_t WidestAxis(const std::vector<BodyBox>& boxes) {
    std::array<double, 3> variance{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double sum = 0.0;
        double squares = 0.0;
        for (const BodyBox& box : boxes) {
            const double centre = box.min[axis] + box.max[axis];
            sum += centre;
            squares += centre * centre;
        }
        variance[axis] = squares - sum * sum / static_cast<double>(boxes.size());
    }
    return static_cast<std::size_t>(std::ranges::max_element(variance) - variance.begin());
}

/// The root boxes of all bodies that have triangles. False where one is no number.
bool CollectBoxes(std::span<ICollisionBody* const> bodies, std::vector<BodyBox>& boxes) {
    boxes.reserve(bodies.size());
    for (ICollisionBody* body : bodies) {
        const auto& own = *dynamic_cast<const CollisionBody*>(body);
        const AABBHierarchyNode& root = own.Hierarchy()->Root();
        if (root.IsEmpty()) continue;
        const Box& box = root.WorldBox();
        if (std::isnan(ExtentSum(box))) return false;
        boxes.push_back({{box.min.x, box.min.y, box.min.z}, {box.max.x, box.max.y, box.max.z}, &own});
    }
    return true;
}

}  // namespace

bool VisitNearBodies(std::span<ICollisionBody* const> bodies,
                     double reach,
                     std::size_t most,
                     FunctionRef<void(const CollisionBody& first, const CollisionBody& second)> visit) {
    std::vector<BodyBox> boxes;
    if (!CollectBoxes(bodies, boxes)) return false;
    const std::size_t axis = WidestAxis(boxes);
    for (BodyBox& box : boxes) {
        std::swap(box.min[0], box.min[axis]);
        std::swap(box.max[0], box.max[axis]);
    }
    std::ranges::sort(boxes, {}, [](const BodyBox& box) { return box.min[0]; });

    std::atomic<std::size_t> visited = 0;
    ParallelFor(boxes.size(), kBodyChunk, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            const BodyBox& box = boxes[i];
            std::size_t near = 0;
            for (std::size_t j = i + 1; j < boxes.size(); ++j) {
                const BodyBox& other = boxes[j];
                // Those that follow begin farther out still.
                if (other.min[0] - box.max[0] > reach) break;
                if (IsBeyond(box, other, 1, reach) || IsBeyond(box, other, 2, reach)) continue;
                ++near;
                visit(*box.body, *other.body);
            }
            if (visited.fetch_add(near, std::memory_order_relaxed) + near > most) return;
        }
    });
    return visited.load(std::memory_order_relaxed) <= most;
}

}  // namespace tarn::details
