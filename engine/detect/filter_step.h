#pragma once

#include "core/obb_hierarchy.h"
#include "detect/filter_search.h"

#include <cstddef>
#include <vector>

/// \file
/// The inner loop of searches in filter trees. It is compiled once for each set of instructions.

namespace tarn::details {

/// One tree as seen from the frame of the other, in single precision.
struct FilterView {
    float rotation[3][3];  ///< column j is the other frame's axis j in this frame
    float offset[3];       ///< from this tree's origin to the other one's, in this frame
};

/// Two boxes to be looked at.
struct FilterPair {
    OBBItem first;
    OBBItem second;
    float lower;    ///< bounds their squared distance from below
    float urgency;  ///< the less, the sooner they should be looked at: less than 0 where they overlap
};

/// What a search goes by.
struct FilterTask {
    SearchGoal goal;
    const OBBHierarchy& first;
    const OBBHierarchy& second;
    FilterView from_first;
    FilterView from_second;
    float margin;  ///< see `RelativeFrame`
    SearchLimit& limit;
    TrianglePairVisitor visit;
};

/// Works pending pairs off until there are none or `budget` pairs have been taken, on the best instructions
/// that the processor has. Looking for crossings, the last one is always next. Looking for the nearest, the
/// pairs are a heap, the most urgent one at the front.
void WorkOff(const FilterTask& task, std::vector<FilterPair>& pending, std::size_t budget);

}  // namespace tarn::details
