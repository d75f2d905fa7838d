#pragma once

#include "ostrel/quarrix/collision_couple.h"
#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/enumerations.h"
#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/interference_couple.h"
#include "ostrel/quarrix/near_elements_couple.h"
#include "ostrel/quarrix/triangle.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// The answer of an interference check. It keeps the elements that it names, and holds no use of their
/// bodies, so it can be read after its configuration is gone. All properties throw `ObjectDisposedException`
/// after disposal. Not for use from several threads at the same time.
class QUARRIX_API CollisionResult final : public DisposableRecord {
public:
    /// Nothing collides.
    CollisionResult() = default;
    /// As given; the triangles in pairs, those of the first couple.
    CollisionResult(bool checkResult,
                    InterferenceResultType interferenceType,
                    std::vector<std::shared_ptr<Triangle>> triangles,
                    std::vector<std::shared_ptr<CollisionCouple>> pairs);

    /// Whether anything collides.
    bool get_Result() const;
    /// `Intersect` for every check, whatever it found; `None` for a result that no check has made.
    InterferenceResultType get_InterferenceType() const;
    /// The pairs that collide, in the order of the configuration.
    std::vector<std::shared_ptr<CollisionCouple>> get_CollidingElementCouples() const;
    /// Always empty: an interference check does not look for near pairs.
    std::vector<std::shared_ptr<NearElementsCouple>> get_AlmostCollidingElementsCouples() const;
    /// The triangles of the first couple, if the check was asked for them: of the first and the second
    /// element in turn.
    std::vector<std::shared_ptr<Triangle>> get_IntersectingTriangles() const;
    /// The middle of the crossing of the first two triangles, in world coordinates; the middle between their
    /// centroids where they do not cross; the origin without triangles. Always the same array.
    const std::array<double, 3>& get_CollisionCenter() const;
    /// Always empty, also after disposal.
    std::vector<std::shared_ptr<InterferenceCouple>> GetIntersectingSubElements(
        const std::shared_ptr<CollisionCouple>& intersectingCouple) const;

private:
    bool check_result_ = false;
    InterferenceResultType interference_type_ = InterferenceResultType::None;
    /// Computed at the first request.
    mutable std::optional<std::array<double, 3>> center_;
    std::vector<std::shared_ptr<Triangle>> triangles_;
    std::vector<std::shared_ptr<CollisionCouple>> pairs_;
};

}  // namespace Ostrel::Quarrix::Collisions
