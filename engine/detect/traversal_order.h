#pragma once

#include "core/aabb_hierarchy.h"
#include "detect/pair_descent.h"

namespace tarn::details {

/// Whether a leaf pair comes before another one in traversal order (see `VisitLeafPairs`), without a descent:
/// follows the splits above both until they part. Takes time in proportion to the depth of the trees, unless
/// one pair is ahead in both of them: then it comes first whichever is split.
inline bool ComesBefore(const AABBHierarchy& first,
                        const AABBHierarchy& second,
                        const NodePair& leaves,
                        const NodePair& others) {
    if (leaves.first >= others.first && leaves.second >= others.second) return false;
    if (leaves.first <= others.first && leaves.second <= others.second) return true;
    NodePair pair{&first.Root(), &second.Root()};
    while (!pair.first->IsLeaf() || !pair.second->IsLeaf()) {
        const bool splits_first = SplitsFirst(pair);
        const AABBHierarchyNode*& split = splits_first ? pair.first : pair.second;
        // In pre-order, what lies below the second child follows on everything below the first.
        const AABBHierarchyNode* const second_child = split->SecondChild();
        const bool is_later = (splits_first ? leaves.first : leaves.second) >= second_child;
        const bool other_is_later = (splits_first ? others.first : others.second) >= second_child;
        if (is_later != other_is_later) return other_is_later;
        split = is_later ? second_child : split->FirstChild();
    }
    return false;
}

}  // namespace tarn::details
