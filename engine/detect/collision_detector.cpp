#include "detect/collision_detector.h"

#include "config/body_pair.h"
#include "core/collision_body.h"
#include "detect/check_preparation.h"
#include "detect/configuration_dump.h"
#include "detect/couple_loop.h"
#include "detect/hierarchy_traversal.h"
#include "detect/policy_check.h"

#include <optional>
#include <vector>

namespace tarn::details {

namespace {

/// Checks all couples, or until the first hit.
std::vector<CoupleHit<TriangleHit>> CheckCouples(const CoupleTable& couples, bool stops_at_first_hit) {
    return FindInCouples<TriangleHit>(couples, stops_at_first_hit, [](const KeyBodyPair& couple) {
        const TriangleHit hit = FindFirstHit(*couple.First()->Hierarchy(), *couple.Second()->Hierarchy());
        return hit ? std::optional(hit) : std::nullopt;
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
    return !CheckCouples(PrepareCouples<IPairsProvider>(configuration), true).empty();
}

CollisionResult& CollisionDetector::Check(CollisionResult& result,
                                          ICollisionConfiguration& configuration,
                                          CheckPolicy policy) {
    return CheckByPolicy<IPairsProvider>(result, configuration, policy, CheckCouples, PairResultOf);
}

void CollisionDetector::Dump(ICollisionConfiguration& configuration, DumpType type, std::ostream& stream) {
    configuration.UpdateBodies();
    DumpBodies(configuration.RetrieveElements(), type, stream);
}

}  // namespace tarn::details
