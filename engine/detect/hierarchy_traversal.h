#pragma once

#include "detect/leaf_test.h"

namespace tarn::details {

class AABBHierarchy;
class RelativeFrame;

/// Descends two hierarchies together, at their current placements, and returns the first intersecting
/// triangle pair in traversal order (see `VisitLeafPairs`), or none. This is the rule by which triangles of
/// bodies intersect; everything else that looks for hits finds the same, faster.
///  (1) Node pairs whose world boxes do not overlap are left out.
///  (2) Other leaves are tested triangle by triangle (see `LeafTest`).
/// Safe from any thread.
TriangleHit FindFirstHit(const AABBHierarchy& first, const AABBHierarchy& second);

/// The same, where the caller has the frame of the two, and with a filter: subtrees that are shown apart are
/// left out as a whole.
TriangleHit FindFirstHitFiltered(const AABBHierarchy& first,
                                 const AABBHierarchy& second,
                                 const RelativeFrame& frame);

}  // namespace tarn::details
