#pragma once

namespace tarn::details {

class AABBHierarchy;
class RelativeFrame;

/// The smallest of `bound` and certain squared distances between centres of the two hierarchies' world boxes:
///  (1) of the first one's root to every node of the second,
///  (2) of every node of the first to every leaf of the second.
/// These are the node pairs of a descent that splits the second tree first, and fully. NaN distances count
/// for nothing, and a NaN bound stays. Neither tree is empty. Safe from any thread.
double TightenBound(const AABBHierarchy& first, const AABBHierarchy& second, double bound);

/// The same, with a filter: what the frame of the two shows to be farther apart is left out.
double TightenBound(const AABBHierarchy& first,
                    const AABBHierarchy& second,
                    double bound,
                    const RelativeFrame& frame);

}  // namespace tarn::details
