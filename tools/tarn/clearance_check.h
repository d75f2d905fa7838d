#pragma once

#include "couple_check.h"

#include "tarn/proximity_configuration.h"

#include <memory>
#include <optional>

namespace tarn::program {

/// Which couples do not keep their clearances, and by how much. `clearance` is that of all couples, in
/// millimetres; without it, the configuration holds its couples already, each with its own.
std::unique_ptr<CoupleCheck> MakeClearanceCheck(std::shared_ptr<tarn::IProximityConfiguration> configuration,
                                                std::optional<double> clearance);

}  // namespace tarn::program
