#pragma once

#include "couple_check.h"

#include "tarn/check_policy.h"
#include "tarn/collision_configuration.h"

#include <memory>

namespace tarn::program {

/// Which couples interfere, and where.
std::unique_ptr<CoupleCheck> MakeInterferenceCheck(
    std::shared_ptr<tarn::ICollisionConfiguration> configuration, tarn::CheckPolicy policy);

}  // namespace tarn::program
