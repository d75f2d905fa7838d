#pragma once

#include "detect/leaf_test.h"

namespace tarn::details {

class AABBHierarchy;

/// Descends two hierarchies together, at their current placements, and returns the first intersecting
/// triangle pair in traversal order, or none. The order is fixed by these rules:
///  (1) Node pairs whose world boxes do not overlap are left out.
///  (2) Two leaves are tested triangle by triangle (see `LeafTest`).
///  (3) Of a leaf and an inner node the inner one is split; of two inner nodes the one with the larger extent
///      sum of its local box, the first body's if they are equal.
///  (4) The split node's first child comes first, with all that follows from it, then its second child.
/// Trees of any depth are descended without recursion. Safe from any thread.
TriangleHit FindFirstHit(const AABBHierarchy& first, const AABBHierarchy& second);

}  // namespace tarn::details
