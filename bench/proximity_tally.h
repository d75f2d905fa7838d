#pragma once

#include "tarn/proximity_outcome.h"

#include <cstddef>

namespace tarn::bench {

/// How many outcomes of each kind there are.
struct ProximityTally {
    std::size_t intersecting = 0;
    std::size_t touching = 0;
    std::size_t within = 0;
    std::size_t beyond = 0;
    std::size_t unjudged = 0;
    /// Pairs of leaves that were retained, all outcomes together.
    std::size_t retained = 0;

    void Add(const ProximityOutcome& outcome) {
        retained += outcome.retained_count;
        switch (outcome.state) {
            case ProximityState::Touching:
                ++touching;
                break;
            case ProximityState::Intersecting:
                ++intersecting;
                break;
            case ProximityState::WithinClearance:
                ++within;
                break;
            case ProximityState::BeyondClearance:
                ++(outcome.is_judged ? beyond : unjudged);
                break;
        }
    }
};

}  // namespace tarn::bench
