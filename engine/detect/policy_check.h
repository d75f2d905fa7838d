#pragma once

#include "detect/check_preparation.h"

#include "tarn/check_policy.h"

#include <utility>

namespace tarn::details {

/// A check of either kind under a policy, in the order of steps that the detectors promise: placements,
/// policy, couples, result. `check_couples(couples, bodies, procedure)` returns the hits in couple order,
/// `pair_result_of(couple, finding, records_triangles)` makes a record of one. `result` is replaced as a
/// whole; after an exception it is as it was.
template <typename Provider,
          typename Result,
          typename Configuration,
          typename CheckCouples,
          typename PairResultOf>
Result& CheckByPolicy(Result& result,
                      Configuration& configuration,
                      CheckPolicy policy,
                      CheckCouples check_couples,
                      PairResultOf pair_result_of) {
    configuration.UpdateBodies();
    const Procedure procedure = ProcedureOf(policy);
    const auto bodies = configuration.RetrieveElements();
    const auto& couples = PrepareCouples<Provider>(configuration, bodies);
    const auto hits = check_couples(couples, bodies, procedure);

    Result checked;
    checked.Pairs.reserve(hits.size());
    for (const auto& hit : hits) {
        checked.Pairs.push_back(
            pair_result_of(couples[hit.position], hit.finding, procedure.records_triangles));
    }
    result = std::move(checked);
    return result;
}

}  // namespace tarn::details
