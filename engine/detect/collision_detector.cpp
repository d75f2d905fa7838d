#include "detect/collision_detector.h"

#include "config/body_pair.h"
#include "core/collision_body.h"
#include "detect/broad_phase.h"
#include "detect/check_preparation.h"
#include "detect/configuration_dump.h"
#include "detect/couple_loop.h"
#include "detect/crossing_search.h"
#include "detect/hierarchy_traversal.h"
#include "detect/policy_check.h"

#include <optional>
#include <vector>

namespace tarn::details {

namespace {

/// The triangles of a couple by which it intersects. What is found stays unnamed where nobody asks for it.
std::optional<TriangleHit> FindHit(const AABBHierarchy& first,
                                   const AABBHierarchy& second,
                                   bool records_triangles,
                                   Filters filters) {
    if (filters == Filters::On && !records_triangles)
        return HaveCrossing(first, second) ? std::optional(TriangleHit()) : std::nullopt;
    const TriangleHit hit =
        filters == Filters::On ? FindFirstHitFast(first, second) : FindFirstHit(first, second);
    return hit ? std::optional(hit) : std::nullopt;
}

/// Checks all couples, or until the first hit.
std::vector<CoupleHit<TriangleHit>> CheckCouples(const CoupleTable& couples,
                                                 const std::vector<ICollisionBody*>& bodies,
                                                 const Procedure& procedure,
                                                 Filters filters) {
    const CoupleSelection selection =
        filters == Filters::On ? SelectNear(couples, bodies, 0.0) : CoupleSelection(couples.size());
    return FindInCouples<TriangleHit>(
        couples, selection, procedure.stops_at_first_hit, [&](const KeyBodyPair& couple) {
            return FindHit(*couple.First()->Hierarchy(), *couple.Second()->Hierarchy(),
                           procedure.records_triangles, filters);
        });
}

CollisionPairResult PairResultOf(const KeyBodyPair& couple, const TriangleHit& hit, bool records_triangles) {
    CollisionPairResult result{couple.First(), couple.Second(), {}};
    if (records_triangles) result.Triangles.push_back({*hit.first, *hit.second});
    return result;
}

}  // namespace

bool CollisionDetector::Check(ICollisionConfiguration& configuration) {
    configuration.UpdateBodies();
    const auto bodies = configuration.RetrieveElements();
    const auto& couples = PrepareCouples<IPairsProvider>(configuration, bodies);
    const Procedure procedure = ProcedureOf(CheckPolicy::FirstInterferenceStop);
    return !CheckCouples(couples, bodies, procedure, filters_).empty();
}

CollisionResult& CollisionDetector::Check(CollisionResult& result,
                                          ICollisionConfiguration& configuration,
                                          CheckPolicy policy) {
    const auto check_couples = [this](const auto&... arguments) {
        return CheckCouples(arguments..., filters_);
    };
    return CheckByPolicy<IPairsProvider>(result, configuration, policy, check_couples, PairResultOf);
}

void CollisionDetector::Dump(ICollisionConfiguration& configuration, DumpType type, std::ostream& stream) {
    configuration.UpdateBodies();
    DumpBodies(configuration.RetrieveElements(), type, stream);
}

}  // namespace tarn::details
