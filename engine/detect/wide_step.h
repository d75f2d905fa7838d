#pragma once

#include "core/function_ref.h"
#include "core/wide_hierarchy.h"
#include "detect/pair_descent.h"
#include "detect/wide_search.h"

#include <cstddef>
#include <vector>

/// \file
/// The inner loop of searches in wide trees. It is compiled once for each set of instructions.

namespace tarn::details {

/// The boxes of one tree as seen from the frame of another one's box, in single precision.
struct WideView {
    float rotation[3][3];      ///< column j is the other frame's axis j in this frame
    float magnitude[3][3];     ///< of the entries of the rotation
    float inverse_sine[3][3];  ///< of the angles between axes i and j, or 0 where they are nearly parallel
    float offset[3];           ///< from this tree's origin to the other one's, in this frame
    float margin;
};

/// Two boxes to be looked at.
struct WidePair {
    WideItem first;
    WideItem second;
    float lower;    ///< bounds their squared distance from below
    float urgency;  ///< the less, the sooner they should be looked at: less than 0 where they overlap
};

/// What a search goes by.
struct WideTask {
    /// The order of search.
    SearchOrder order;
    const AABBHierarchy& first;
    const AABBHierarchy& second;
    WideView from_first;
    WideView from_second;
    SearchLimit& limit;
    FunctionRef<void(const NodePair& leaves)> visit;
};

/// Works pending pairs off until there are none or `budget` pairs have been taken, on the best instructions
/// that the processor has. In depth, the last one is always next. By nearness, the pairs are a heap, the most
/// urgent one at the front.
void WorkOff(const WideTask& task, std::vector<WidePair>& pending, std::size_t budget);

}  // namespace tarn::details
