#pragma once

#include "ostrel/quarrix/collision_couple.h"
#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/distance_segment.h"
#include "ostrel/quarrix/exceptions.h"
#include "ostrel/quarrix/export.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// One almost-colliding pair of a collision result: the pair, and the segment that shows how near it is.
class QUARRIX_API NearElementsCouple final : public DisposableRecord {
public:
    /// Null is not tested for here.
    NearElementsCouple(std::shared_ptr<CollisionCouple> collisionCouple,
                       std::shared_ptr<DistanceSegment> segment);

    /// How near. Throws `ObjectDisposedException` after disposal. All other properties go on answering then,
    /// deliberately.
    std::shared_ptr<Collisions::DistanceSegment> get_DistanceSegment() const;
    /// The pair.
    std::shared_ptr<Collisions::CollisionCouple> get_CollisionCouple() const { return collision_couple_; }
    ///@{
    /// That of the segment. Throws `NullReferenceException` where there is none.
    double get_P1X() const { return Segment().get_P1X(); }
    double get_P1Y() const { return Segment().get_P1Y(); }
    double get_P1Z() const { return Segment().get_P1Z(); }
    double get_P2X() const { return Segment().get_P2X(); }
    double get_P2Y() const { return Segment().get_P2Y(); }
    double get_P2Z() const { return Segment().get_P2Z(); }
    double get_Length() const { return Segment().get_Length(); }
    ///@}

private:
    const Collisions::DistanceSegment& Segment() const {
        if (!distance_segment_) throw NullReferenceException();
        return *distance_segment_;
    }

    std::shared_ptr<DistanceSegment> distance_segment_;
    std::shared_ptr<CollisionCouple> collision_couple_;
};

}  // namespace Ostrel::Quarrix::Collisions
