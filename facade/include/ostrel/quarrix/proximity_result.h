#pragma once

#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/interference_couple.h"
#include "ostrel/quarrix/triangle.h"

#include <memory>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// The answer of a clearance check. It keeps the elements that it names, and holds no use of their bodies.
/// All properties throw `ObjectDisposedException` after disposal.
class QUARRIX_API ProximityResult final : public DisposableRecord {
public:
    /// Nothing is too near.
    ProximityResult() = default;
    /// As given; the triangles in pairs, those of the first couple.
    ProximityResult(bool checkResult,
                    std::vector<std::shared_ptr<Triangle>> triangles,
                    std::vector<std::shared_ptr<InterferenceCouple>> pairs);

    /// Whether any pair intersects or comes within its clearance.
    bool get_Result() const;
    /// The pairs that do not keep their clearance, in the order of the configuration.
    std::vector<std::shared_ptr<InterferenceCouple>> get_ElementCouples() const;
    /// The triangles of the first couple, if the check was asked for them: of the first and the second
    /// element in turn.
    std::vector<std::shared_ptr<Triangle>> get_NearestTriangles() const;

private:
    bool check_result_ = false;
    std::vector<std::shared_ptr<Triangle>> triangles_;
    std::vector<std::shared_ptr<InterferenceCouple>> pairs_;
};

}  // namespace Ostrel::Quarrix::Collisions
