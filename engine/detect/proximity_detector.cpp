#include "detect/proximity_detector.h"

#include "config/proximity_body_pair.h"
#include "core/collision_body.h"
#include "detect/broad_phase.h"
#include "detect/check_preparation.h"
#include "detect/configuration_dump.h"
#include "detect/couple_loop.h"
#include "detect/nearest_search.h"
#include "detect/policy_check.h"
#include "detect/proximity_search.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace tarn::details {

namespace {

/// What is to be reported of a couple.
std::optional<ProximityFinding> Find(const ProximityKeyBodyPair& couple, Filters filters) {
    const AABBHierarchy& first = *couple.First()->Hierarchy();
    const AABBHierarchy& second = *couple.Second()->Hierarchy();
    if (filters == Filters::On) return FindWithinClearance(first, second, couple.Clearance());
    const ProximityFinding finding = SearchProximity(first, second, couple.Clearance());
    return IsReported(finding.outcome) ? std::optional(finding) : std::nullopt;
}

/// The largest clearance of any couple, by magnitude: a negative one counts by its square. NaN counts not:
/// what overlaps is near at any reach. At least the gap up to which squares round to 0, as of boxes that
/// overlap.
double LargestClearance(const ProximityCoupleTable& couples) {
    double largest = 0x1p-537;
    for (const ProximityKeyBodyPair& couple : couples)
        largest = std::max(largest, std::abs(couple.Clearance()));
    return largest;
}

/// Measures all couples, or until the first one to be reported.
std::vector<CoupleHit<ProximityFinding>> CheckCouples(const ProximityCoupleTable& couples,
                                                      const std::vector<ICollisionBody*>& bodies,
                                                      const Procedure& procedure,
                                                      Filters filters) {
    const CoupleSelection selection = filters == Filters::On
                                          ? SelectNear(couples, bodies, LargestClearance(couples))
                                          : CoupleSelection(couples.size());
    return FindInCouples<ProximityFinding>(
        couples, selection, procedure.stops_at_first_hit,
        [filters](const ProximityKeyBodyPair& couple) { return Find(couple, filters); });
}

ProximityPairResult PairResultOf(const ProximityKeyBodyPair& couple,
                                 const ProximityFinding& finding,
                                 bool records_triangles) {
    ProximityPairResult result;
    result.First = couple.First();
    result.Second = couple.Second();
    result.Clearance = couple.Clearance();
    result.IntersectionFound = finding.outcome.state == ProximityState::Intersecting;
    if (result.IntersectionFound) return result;
    result.distance = finding.outcome.distance;
    result.Segment = finding.outcome.segment;
    if (records_triangles) result.Triangles.push_back({*finding.triangles.first, *finding.triangles.second});
    return result;
}

}  // namespace

bool ProximityDetector::Check(IProximityConfiguration& configuration) {
    configuration.UpdateBodies();
    const auto bodies = configuration.RetrieveElements();
    const auto& couples = PrepareCouples<IProximityPairsProvider>(configuration, bodies);
    const Procedure procedure = ProcedureOf(CheckPolicy::FirstInterferenceStop);
    return !CheckCouples(couples, bodies, procedure, filters_).empty();
}

ProximityResult& ProximityDetector::Check(ProximityResult& result,
                                          IProximityConfiguration& configuration,
                                          CheckPolicy policy) {
    const auto check_couples = [this](const auto&... arguments) {
        return CheckCouples(arguments..., filters_);
    };
    return CheckByPolicy<IProximityPairsProvider>(result, configuration, policy, check_couples, PairResultOf);
}

void ProximityDetector::Dump(IProximityConfiguration& configuration, DumpType type, std::ostream& stream) {
    configuration.UpdateBodies();
    DumpBodies(configuration.RetrieveElements(), type, stream);
}

}  // namespace tarn::details
