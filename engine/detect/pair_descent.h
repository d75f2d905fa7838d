#pragma once

#include "core/aabb_hierarchy.h"

#include <array>
#include <cstddef>
#include <vector>

namespace tarn::details {

struct NodePair {
    const AABBHierarchyNode* first;
    const AABBHierarchyNode* second;
};

/// Pending node pairs, last in, first out. The first sixteen, which is as many as balanced trees of some tens
/// of thousands of triangles need, stand in the caller's frame; only deeper descents touch the heap.
class PairStack {
public:
    void Push(NodePair pair) {
        if (size_ < frame_.size()) {
            frame_[size_] = pair;
        } else {
            heap_.push_back(pair);
        }
        ++size_;
    }

    /// Takes the top pair off. False when there is none.
    bool Pop(NodePair& pair) {
        if (size_ == 0) return false;
        --size_;
        if (size_ < frame_.size()) {
            pair = frame_[size_];
        } else {
            pair = heap_.back();
            heap_.pop_back();
        }
        return true;
    }

private:
    std::size_t size_ = 0;
    std::array<NodePair, 16> frame_;
    std::vector<NodePair> heap_;
};

inline bool SplitsFirst(const NodePair& pair) {
    if (pair.first->IsLeaf()) return false;
    if (pair.second->IsLeaf()) return true;
    // NaN splits the second, as a comparison by "larger or equal" has it.
    return pair.first->ExtentSum() >= pair.second->ExtentSum();
}

/// Descends two hierarchies together, neither of them empty, and visits their pairs of leaves in traversal
/// order, until a visit returns true. Returns whether one did. The order is fixed by these rules:
///  (1) Node pairs that `admits(pair)` refuses are left out.
///  (2) Of a leaf and an inner node the inner one is split; of two inner nodes the one with the larger extent
///      sum of its local box, the first body's if they are equal.
///  (3) The split node's first child comes first, with all that follows from it, then its second child.
/// `visit(pair)` follows immediately on the `admits` of the pair. Trees of any depth are descended without
/// recursion.
template <typename Admits, typename Visit>
bool VisitLeafPairs(const AABBHierarchy& first, const AABBHierarchy& second, Admits admits, Visit visit) {
    NodePair pair{&first.Root(), &second.Root()};
    PairStack pending;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled as it grows
    do {
        while (admits(pair)) {
            if (pair.first->IsLeaf() && pair.second->IsLeaf()) {
                if (visit(pair)) return true;
                break;
            }
            if (SplitsFirst(pair)) {
                pending.Push({pair.first->SecondChild(), pair.second});
                pair.first = pair.first->FirstChild();
            } else {
                pending.Push({pair.first, pair.second->SecondChild()});
                pair.second = pair.second->FirstChild();
            }
        }
    } while (pending.Pop(pair));
    return false;
}

}  // namespace tarn::details
