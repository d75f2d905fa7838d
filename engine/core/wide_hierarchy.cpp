#include "core/wide_hierarchy.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarn::details {

namespace {

/// Covers the rounding of a half extent to single precision, and of its sum with the centre.
constexpr double kHalfGrowth = 1.0 + 0x1p-22;

struct Interval {
    float centre;
    float half;
};

/// The interval relative to `origin`. The half is measured from the rounded centre, so both ends are inside.
Interval Narrow(double min, double max, double origin) {
    const auto centre = static_cast<float>(0.5 * ((min - origin) + (max - origin)));
    const double middle = origin + static_cast<double>(centre);
    return {centre, static_cast<float>(std::max(max - middle, middle - min) * kHalfGrowth)};
}

/// The nodes below one that make a wide node: its children, the largest of which is opened until there are
/// four or only leaves are left. They stay in the order of the binary tree.
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

}  // namespace

WideHierarchy::WideHierarchy(std::span<const AABBHierarchyNode> nodes) {
    const Box root = nodes[0].LocalBox();
    origin_ = 0.5 * (root.min + root.max);
    // A wide node stands for up to three inner nodes of the binary tree, mostly for two or three.
    nodes_.reserve(nodes.size() / 4 + 2);

    const AABBHierarchyNode* const first = nodes.data();
    const std::array members{first};
    Append(members, first);
    // Children join at the end, so the loop comes to them in their turn.
    for (std::uint32_t parent = 0; parent < nodes_.size(); ++parent) {
        for (std::uint32_t lane = 0; lane < nodes_[parent].count; ++lane) {
            const std::uint32_t index = nodes_[parent].child[lane];
            const std::uint32_t child =
                first[index].IsLeaf() ? index | kLeafBit : Append(Members(first[index]).All(), first);
            nodes_[parent].child[lane] = child;
        }
    }
}

std::uint32_t WideHierarchy::Append(std::span<const AABBHierarchyNode* const> members,
                                    const AABBHierarchyNode* first) {
    WideNode& node = nodes_.emplace_back();
    node.count = static_cast<std::uint32_t>(members.size());
    for (std::size_t lane = 0; lane < members.size(); ++lane) {
        const Box box = members[lane]->LocalBox();
        for (int axis = 0; axis < 3; ++axis) {
            const auto [centre, half] = Narrow(box.min[axis], box.max[axis], origin_[axis]);
            node.centre[axis][lane] = centre;
            node.half[axis][lane] = half;
        }
        node.child[lane] = static_cast<std::uint32_t>(members[lane] - first);
    }
    return static_cast<std::uint32_t>(nodes_.size() - 1);
}

}  // namespace tarn::details
