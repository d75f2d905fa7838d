#include "core/wide_hierarchy.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "core/parallel.h"
#include "core/plane.h"
#include "core/triangle.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace tarn::details {

namespace {

/// Covers the rounding of a half extent to single precision, and of its sum with the centre.
constexpr double kHalfGrowth = 1.0 + 0x1p-22;

/// Nodes whose boxes and slabs a task sets up: some microseconds each.
constexpr std::size_t kNodeChunk = 32;
/// Runs of triangles longer than this have no slab: few of them are thin, and it would take time to find out.
constexpr std::size_t kSlabTriangles = 24;

struct Interval {
    float centre;
    float half;
};

/// The half is measured from the rounded centre, so both ends are inside.
Interval Narrow(double min, double max) {
    const auto centre = static_cast<float>(0.5 * (min + max));
    const double middle = static_cast<double>(centre);
    return {centre, static_cast<float>(std::max(max - middle, middle - min) * kHalfGrowth)};
}

/// Rounded to single precision, and back: that is the direction along which the tests look.
Vector3 NarrowUnit(const Vector3& normal) {
    const double length = std::sqrt(LengthSquared(normal));
    const auto narrow = [length](double v) { return static_cast<double>(static_cast<float>(v / length)); };
    return {narrow(normal.x), narrow(normal.y), narrow(normal.z)};
}

struct Slab {
    Vector3 normal{};
    double min = 0.0;
    double max = 0.0;
};

/// Where the triangles lie along a direction.
Slab SlabAlong(const Vector3& normal, std::span<const Triangle> triangles, const Vector3& origin) {
    Slab slab{normal, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (const Triangle& triangle : triangles) {
        const double d0 = Dot(normal, Vertex0(triangle) - origin);
        const double d1 = Dot(normal, Vertex1(triangle) - origin);
        const double d2 = Dot(normal, Vertex2(triangle) - origin);
        slab.min = std::min(slab.min, std::min(d0, std::min(d1, d2)));
        slab.max = std::max(slab.max, std::max(d0, std::max(d1, d2)));
    }
    return slab;
}

/// The thinner one of the slabs along the mean normal and along the normal of the largest triangle.
Slab ThinSlab(std::span<const Triangle> triangles, const Vector3& origin) {
    Slab thin;
    double least = std::numeric_limits<double>::infinity();
    const auto attempt = [&](const Vector3& normal) {
        const Slab slab = SlabAlong(NarrowUnit(normal), triangles, origin);
        const double width = slab.max - slab.min;
        // Along directions that are no numbers, nothing has a place: the slab stays turned inside out.
        if (!(width >= 0.0 && width < least)) return;
        least = width;
        thin = slab;
    };
    if (triangles.empty() || triangles.size() > kSlabTriangles) return thin;
    Vector3 sum{};
    Vector3 largest{};
    for (const Triangle& triangle : triangles) {
        const Vector3 normal = Normal(triangle);
        sum = Dot(normal, sum) < 0.0 ? sum - normal : sum + normal;
        if (LengthSquared(normal) > LengthSquared(largest)) largest = normal;
    }
    attempt(sum);
    if (triangles.size() > 1) attempt(largest);
    return thin;
}

/// The nodes below one that make a wide node: its children, the largest of which is opened until there are
/// eight or only leaves are left. They stay in the order of the binary tree.
class Members {
public:
    explicit Members(const AABBHierarchyNode& node) {
        members_ = {node.FirstChild(), node.SecondChild()};
        count_ = 2;
        while (count_ < WideNode::kLanes && OpenLargest()) {
        }
    }

    std::span<const AABBHierarchyNode* const> All() const { return {members_.data(), count_}; }

private:
    bool OpenLargest() {
        std::size_t largest = count_;
        for (std::size_t i = 0; i < count_; ++i) {
            if (members_[i]->IsLeaf()) continue;
            if (largest == count_ || members_[i]->ExtentSum() > members_[largest]->ExtentSum()) largest = i;
        }
        if (largest == count_) return false;
        std::copy_backward(members_.begin() + largest + 1, members_.begin() + count_,
                           members_.begin() + count_ + 1);
        members_[largest + 1] = members_[largest]->SecondChild();
        members_[largest] = members_[largest]->FirstChild();
        ++count_;
        return true;
    }

    std::array<const AABBHierarchyNode*, WideNode::kLanes> members_{};
    std::size_t count_ = 0;
};

/// Whether a node has more triangles below than make a slab, as far as its outermost paths show: where these
/// are long, as in chains of coinciding triangles, nobody has to walk to their ends.
bool IsDeep(const AABBHierarchyNode& node) {
    const AABBHierarchyNode* first = &node;
    const AABBHierarchyNode* last = &node;
    // Every step leaves at least one triangle aside.
    for (std::size_t step = 0; step < kSlabTriangles; ++step) {
        if (!first->IsLeaf()) first = first->FirstChild();
        if (!last->IsLeaf()) last = last->SecondChild();
    }
    return !first->IsLeaf() || !last->IsLeaf();
}

/// Writes box and slab of a binary node into a lane.
void SetShape(const AABBHierarchyNode& binary, const Vector3& origin, std::size_t lane, WideNode& node) {
    const Box box = binary.LocalBox();
    const Slab slab = IsDeep(binary) ? Slab{} : ThinSlab(binary.LocalTrianglesBelow(), origin);
    for (int axis = 0; axis < 3; ++axis) {
        const Interval interval = Narrow(box.min[axis] - origin[axis], box.max[axis] - origin[axis]);
        node.centre[axis][lane] = interval.centre;
        node.half[axis][lane] = interval.half;
        node.slab_normal[axis][lane] = static_cast<float>(slab.normal[axis]);
    }
    const Interval interval = Narrow(slab.min, slab.max);
    node.slab_centre[lane] = interval.centre;
    node.slab_half[lane] = interval.half;
}

}  // namespace

WideHierarchy::WideHierarchy(std::span<const AABBHierarchyNode> nodes) {
    const Box root = nodes[0].LocalBox();
    origin_ = 0.5 * (root.min + root.max);
    // A wide node stands for up to seven inner nodes of the binary tree.
    nodes_.reserve(nodes.size() / 4 + 2);

    const AABBHierarchyNode* const first = nodes.data();
    const std::array members{first};
    Append(members, first);
    // Children join at the end, so the loop comes to them in their turn.
    for (std::uint32_t parent = 0; parent < nodes_.size(); ++parent) {
        for (std::uint32_t lane = 0; lane < nodes_[parent].count; ++lane) {
            const std::uint32_t index = nodes_[parent].binary[lane];
            const std::uint32_t child =
                first[index].IsLeaf() ? index | kLeafBit : Append(Members(first[index]).All(), first);
            nodes_[parent].child[lane] = child;
        }
    }
    ParallelFor(nodes_.size(), kNodeChunk, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            WideNode& node = nodes_[i];
            for (std::uint32_t lane = 0; lane < node.count; ++lane)
                SetShape(first[node.binary[lane]], origin_, lane, node);
        }
    });
}

std::uint32_t WideHierarchy::Append(std::span<const AABBHierarchyNode* const> members,
                                    const AABBHierarchyNode* first) {
    WideNode& node = nodes_.emplace_back();
    node.count = static_cast<std::uint32_t>(members.size());
    std::ranges::fill(node.binary, kLeafBit);
    for (std::size_t lane = 0; lane < members.size(); ++lane)
        node.binary[lane] = static_cast<std::uint32_t>(members[lane] - first);
    return static_cast<std::uint32_t>(nodes_.size() - 1);
}

void WideHierarchy::VisitSlabNormalsAbove(std::uint32_t leaf,
                                          FunctionRef<void(const Vector3& normal)> visit) const {
    // In pre-order, a leaf lies below the last node of a level that does not come after it.
    for (std::uint32_t child = 0; (child & kLeafBit) == 0;) {
        const WideNode& node = nodes_[child];
        std::uint32_t lane = 0;
        while (lane + 1 < node.count && node.binary[lane + 1] <= leaf) ++lane;
        const auto component = [&](int axis) { return static_cast<double>(node.slab_normal[axis][lane]); };
        visit({component(0), component(1), component(2)});
        child = node.child[lane];
    }
}

}  // namespace tarn::details
