#pragma once

#include "tarn/collision_body.h"
#include "tarn/export.h"
#include "tarn/proximity_configuration.h"
#include "tarn/triangle_data.h"

#include <cstdint>
#include <vector>

namespace tarn {

/// How two bodies lie to each other.
enum class ProximityState : std::uint32_t {
    /// In every pair of leaves that was measured they touch (squared distance below 0.001), or no distance
    /// was a number: then `is_judged` is false.
    Touching = 0,
    /// Some of their triangles intersect.
    Intersecting = 1,
    /// The measured distance is not above the clearance.
    WithinClearance = 2,
    /// The measured distance is above the clearance, or nothing was near enough to be measured.
    BeyondClearance = 3,
};

/// All that the search for the distance of one couple found out. `IProximityDetector` tells how it searches.
struct ProximityOutcome {
    /// How they lie.
    ProximityState state = ProximityState::BeyondClearance;
    /// The measured distance, or -1 in the states `Touching` and `Intersecting` and where nothing was
    /// measured. Never below the true distance, up to rounding.
    double distance = -1.0;
    /// Where it was measured, in world coordinates, P1 on the first body and P2 on the second; all zeros
    /// where `distance` is -1.
    SegmentData segment{};
    /// The squared distance within which pairs of leaves were measured: the squared clearance, tightened by
    /// the distances between box centres. Not tightened where the bodies intersect.
    double bound = 0.0;
    /// How many pairs of leaves came within the bound. 0 where the bodies intersect.
    std::uint64_t retained_count = 0;
    /// Whether some retained pair of leaves touches. Such pairs are left out, and where others were measured,
    /// `state` and `distance` are those of the others: the bodies are nearer than that, and touch.
    bool touches = false;
    /// False where the search cannot tell whether the couple keeps its clearance: no distance within it was
    /// found, and
    ///  - two box centres lie nearer each other than the clearance (`bound` is below its square), so that the
    ///    bound left out pairs of leaves that may be nearer; concentric parts, such as a shaft in its bush, are
    ///    the usual case, parts inside hollow ones another;
    ///  - or some triangle without area has a distance that is no number.
    /// Where it is true for a couple beyond its clearance, whatever was left out is at least the clearance
    /// away; what was measured may still be nearer than its measured distance.
    bool is_judged = true;
};

/// A couple and its outcome. The bodies are not owned.
struct ProximityPairOutcome {
    ICollisionBody* first = nullptr;   ///< the first body
    ICollisionBody* second = nullptr;  ///< the second body
    double clearance = 0.0;            ///< as configured
    ProximityOutcome outcome;          ///< what the search found out
};

/// Measures one couple, in no configuration, with the search of `IProximityDetector`, and keeps what that
/// leaves out: touching couples, couples that were not judged, distances beyond the clearance. Makes the
/// bodies' pending placements current first. Throws `NullPointerException` for a null body,
/// `BadCastException` for a body that `make_body` did not make, `LogicException`, naming the body, for one
/// that was never built. Safe from any thread as long as nobody changes the bodies.
[[nodiscard]] TARN_API ProximityOutcome MeasureProximity(ICollisionBody* first,
                                                         ICollisionBody* second,
                                                         double clearance);

/// The same for all enabled couples of a configuration, each with its own clearance, in parallel. Couples
/// that do not touch and are judged to be beyond their clearance are left out, the others stand in couple
/// order. Throws what a check throws. Thread-safety as for a check.
[[nodiscard]] TARN_API std::vector<ProximityPairOutcome> MeasureProximity(
    IProximityConfiguration& configuration);

}  // namespace tarn
