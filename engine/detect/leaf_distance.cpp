#include "detect/leaf_distance.h"

#include "core/box.h"
#include "core/box_distance.h"
#include "core/plane.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

namespace tarn::details {

namespace {

/// See `LeafDistance`.
double RoundingSlack(const Box& a, const Box& b) {
    constexpr double kRoundings = 64.0 * 0x1p-53;
    const Vector3 min = Min(a.min, b.min);
    const Vector3 max = Max(a.max, b.max);
    const double diagonal = std::sqrt(LengthSquared(max - min));
    const Vector3 reach = Max(max, -1.0 * min);
    const double largest = std::max({reach.x, reach.y, reach.z});
    return kRoundings * diagonal * (diagonal + largest);
}

/// The boxes of a leaf's triangles, computed once for all triangles of the other leaf.
class TriangleBoxes {
public:
    explicit TriangleBoxes(std::span<const Triangle> leaf) {  // NOLINT: what is read has been written
        if (leaf.size() > inline_boxes_.size()) heap_boxes_.resize(leaf.size());
        boxes_ = heap_boxes_.empty() ? inline_boxes_.data() : heap_boxes_.data();
        for (std::size_t i = 0; i < leaf.size(); ++i) boxes_[i] = TriangleBox(leaf[i]);
    }
    TriangleBoxes(const TriangleBoxes&) = delete;
    TriangleBoxes& operator=(const TriangleBoxes&) = delete;

    const Box& operator[](std::size_t index) const { return boxes_[index]; }

private:
    std::array<Box, 8> inline_boxes_;
    std::vector<Box> heap_boxes_;
    Box* boxes_;
};

/// A triangle's plane as a direction in which others may be seen to lie apart.
class SeparatingPlane {
public:
    explicit SeparatingPlane(const Triangle& triangle)
        : plane_(PlaneOf(triangle)),
          length_squared_(LengthSquared(plane_.normal)) {
        // The normal of a sliver is mostly rounding noise, and its own vertices are off the plane.
        own_ = std::max({std::abs(SignedValue(plane_, Vertex0(triangle))),
                         std::abs(SignedValue(plane_, Vertex1(triangle))),
                         std::abs(SignedValue(plane_, Vertex2(triangle)))});
    }

    /// Whether another triangle is shown to be farther away than the root of `squared`.
    bool IsFarther(const Triangle& triangle, double squared) const {
        const double d0 = SignedValue(plane_, Vertex0(triangle));
        const double d1 = SignedValue(plane_, Vertex1(triangle));
        const double d2 = SignedValue(plane_, Vertex2(triangle));
        const double gap = std::max(std::min({d0, d1, d2}), -std::max({d0, d1, d2})) - own_;
        // Signed values are distances times the length of the normal.
        return gap > 0.0 && gap * gap > squared * length_squared_;
    }

private:
    Plane plane_;
    double length_squared_;
    double own_;
};

}  // namespace

LeafDistance::LeafDistance(const AABBHierarchy& first, const AABBHierarchy& second, double clearance_squared)
    : first_(first),
      second_(second),
      clearance_squared_(clearance_squared),
      slack_(RoundingSlack(first.WorldBox(first.Root()), second.WorldBox(second.Root()))) {}

NearestTriangles LeafDistance::Measure(const NodePair& leaves, double best, Filters filters) const {
    NearestTriangles nearest;
    nearest.leaves = leaves;
    const auto second_leaf = second_.WorldTriangles(*leaves.second);
    const TriangleBoxes second_boxes(second_leaf);
    for (const Triangle& first : first_.WorldTriangles(*leaves.first)) {
        const Box first_box = TriangleBox(first);
        const SeparatingPlane first_plane(first);
        for (std::size_t j = 0; j < second_leaf.size(); ++j) {
            const Triangle& second = second_leaf[j];
            const double box_distance_squared = BoxDistanceSquared(first_box, second_boxes[j]);
            if (box_distance_squared - slack_ > best) continue;
            if (filters == Filters::On && (first_plane.IsFarther(second, best + slack_) ||
                                           SeparatingPlane(second).IsFarther(first, best + slack_)))
                continue;
            const TrianglePairDistance distance =
                TrianglePairDistanceBound(EdgeForm(first), EdgeForm(second));
            if (distance.distance_squared < kTouchDistanceSquared) {
                NearestTriangles touching;
                touching.touches = true;
                return touching;
            }
            if (std::isnan(distance.distance_squared)) {
                if (!(box_distance_squared > clearance_squared_)) nearest.has_unknown = true;
                continue;
            }
            if (distance.distance_squared > best) continue;
            if (nearest.is_valid && !(distance.distance_squared < nearest.distance_squared)) continue;
            nearest.is_valid = true;
            nearest.distance_squared = distance.distance_squared;
            nearest.triangles = {&first, &second};
            nearest.parameters = distance;
            best = distance.distance_squared;
        }
    }
    return nearest;
}

}  // namespace tarn::details
