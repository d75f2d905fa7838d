#include "tarn/proximity_outcome.h"

#include "config/own_body.h"
#include "config/proximity_body_pair.h"
#include "detect/check_preparation.h"
#include "detect/couple_loop.h"
#include "detect/nearest_search.h"

#include <optional>

namespace tarn {

using details::CollisionBody;
using details::CoupleHit;
using details::PrepareCouples;
using details::ProximityCoupleTable;
using details::RequireBuilt;
using details::RequireOwnClass;

namespace {

ProximityOutcome Measure(const CollisionBody& first, const CollisionBody& second, double clearance) {
    return details::SearchProximityFast(*first.Hierarchy(), *second.Hierarchy(), clearance).outcome;
}

bool IsKept(const ProximityOutcome& outcome) {
    return outcome.state != ProximityState::BeyondClearance || outcome.touches || !outcome.is_judged;
}

}  // namespace

ProximityOutcome MeasureProximity(ICollisionBody* first, ICollisionBody* second, double clearance) {
    CollisionBody* const own_first = RequireOwnClass(first);
    CollisionBody* const own_second = RequireOwnClass(second);
    RequireBuilt(*own_first);
    RequireBuilt(*own_second);
    own_first->Update();
    own_second->Update();
    return Measure(*own_first, *own_second, clearance);
}

std::vector<ProximityPairOutcome> MeasureProximity(IProximityConfiguration& configuration) {
    configuration.UpdateBodies();
    const auto bodies = configuration.RetrieveElements();
    const ProximityCoupleTable& couples =
        PrepareCouples<details::IProximityPairsProvider>(configuration, bodies);
    const auto hits = details::FindInCouples<ProximityOutcome>(
        couples, details::CoupleSelection(couples.size()), false,
        [](const ProximityKeyBodyPair& couple) -> std::optional<ProximityOutcome> {
            const ProximityOutcome outcome = Measure(*couple.First(), *couple.Second(), couple.Clearance());
            return IsKept(outcome) ? std::optional(outcome) : std::nullopt;
        });
    std::vector<ProximityPairOutcome> outcomes;
    outcomes.reserve(hits.size());
    for (const CoupleHit<ProximityOutcome>& hit : hits) {
        const ProximityKeyBodyPair& couple = couples[hit.position];
        outcomes.push_back({couple.First(), couple.Second(), couple.Clearance(), hit.finding});
    }
    return outcomes;
}

}  // namespace tarn
