#pragma once

#include "detect/leaf_test.h"

namespace tarn::details {

class AABBHierarchy;

/// Descends two hierarchies together, at their current placements, and returns the first intersecting
/// triangle pair in traversal order (see `VisitLeafPairs`), or none. Node pairs whose world boxes do not
/// overlap are left out; two leaves are tested triangle by triangle (see `LeafTest`). Safe from any thread.
TriangleHit FindFirstHit(const AABBHierarchy& first, const AABBHierarchy& second);

}  // namespace tarn::details
