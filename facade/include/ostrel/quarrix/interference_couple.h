#pragma once

#include "ostrel/quarrix/collision_configuration_element.h"
#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/distance_segment.h"
#include "ostrel/quarrix/export.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// One pair that a proximity check reports. All properties throw `ObjectDisposedException` after disposal.
class QUARRIX_API InterferenceCouple final : public DisposableRecord {
public:
    /// A pair that intersects: its segment is all zeros.
    InterferenceCouple(std::shared_ptr<ICollisionConfigurationElement> element1,
                       std::shared_ptr<ICollisionConfigurationElement> element2,
                       double clearance);
    /// A pair that comes near.
    InterferenceCouple(std::shared_ptr<ICollisionConfigurationElement> element1,
                       std::shared_ptr<ICollisionConfigurationElement> element2,
                       double clearance,
                       std::shared_ptr<DistanceSegment> segment);
    /// All of it as it is given.
    InterferenceCouple(std::shared_ptr<ICollisionConfigurationElement> element1,
                       std::shared_ptr<ICollisionConfigurationElement> element2,
                       bool intersecting,
                       double clearance,
                       std::shared_ptr<DistanceSegment> segment);

    /// The first element.
    std::shared_ptr<ICollisionConfigurationElement> get_Element1() const;
    /// The second element.
    std::shared_ptr<ICollisionConfigurationElement> get_Element2() const;
    /// Where the two come nearest, first element first, in world coordinates.
    std::shared_ptr<Collisions::DistanceSegment> get_DistanceSegment() const;
    /// The clearance that is asked of the pair.
    double get_Clearance() const;
    /// Whether they intersect, and not only come near.
    bool get_Intersecting() const;

private:
    std::shared_ptr<ICollisionConfigurationElement> first_;
    std::shared_ptr<ICollisionConfigurationElement> second_;
    std::shared_ptr<DistanceSegment> distance_segment_;
    double clearance_;
    bool intersecting_;
};

}  // namespace Ostrel::Quarrix::Collisions
