#pragma once

#include "detect/proximity_finding.h"

#include <optional>

namespace tarn::details {

class AABBHierarchy;

/// What `SearchProximity` finds, faster: crossings and nearest triangles are looked for in the filter trees.
ProximityFinding SearchProximityFast(const AABBHierarchy& first,
                                     const AABBHierarchy& second,
                                     double clearance);

/// The same, where only bodies that intersect or are within the clearance are of interest: nothing for all
/// others. So nothing beyond the clearance has to be measured, and the bound only has to be known as far as
/// it concerns the nearest triangles. Of the outcome, state, distance and segment are set.
std::optional<ProximityFinding> FindWithinClearance(const AABBHierarchy& first,
                                                    const AABBHierarchy& second,
                                                    double clearance);

}  // namespace tarn::details
