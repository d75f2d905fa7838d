#include "detect/hierarchy_traversal.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"

#include <array>
#include <cstddef>
#include <vector>

namespace tarn::details {

namespace {

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

bool SplitsFirst(const NodePair& pair) {
    if (pair.first->IsLeaf()) return false;
    if (pair.second->IsLeaf()) return true;
    // NaN splits the second, as a comparison by "larger or equal" has it.
    return pair.first->ExtentSum() >= pair.second->ExtentSum();
}

}  // namespace

TriangleHit FindFirstHit(const AABBHierarchy& first, const AABBHierarchy& second) {
    NodePair pair{&first.Root(), &second.Root()};
    // An empty tree has no box that placements and comparisons could act on.
    if (pair.first->IsEmpty() || pair.second->IsEmpty()) return {};
    LeafTest leaf_test(std::size_t{first.LeafNumber()} + second.LeafNumber());
    PairStack pending;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled as it grows
    do {
        while (Overlap(first.WorldBox(*pair.first), second.WorldBox(*pair.second))) {
            if (pair.first->IsLeaf() && pair.second->IsLeaf()) {
                const TriangleHit hit = leaf_test.FindFirstHit(first.WorldTriangles(*pair.first),
                                                               second.WorldTriangles(*pair.second));
                if (hit) return hit;
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
    return {};
}

}  // namespace tarn::details
