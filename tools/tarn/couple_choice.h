#pragma once

#include "assembly.h"
#include "readers/model.h"

#include "tarn/collision_configuration.h"
#include "tarn/proximity_configuration.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tarn::program {

enum class CoupleScope { All, BetweenOwners, WithinOwners };

/// Which couples a user wants checked. A pattern (see `NamePattern`) means the parts whose name or whose
/// owner's name it matches.
struct CoupleChoice {
    CoupleScope scope = CoupleScope::All;
    std::optional<std::string> against;  ///< only couples with one of these parts, whatever `scope` says
    std::vector<std::pair<std::string, std::string>> ignored;  ///< couples left out, either way round
};

/// Puts the bodies of an assembly, which holds the parts of the model in their order, into an empty
/// configuration and enables the chosen couples. Returns warnings about patterns that matched nothing. Throws
/// `ProgramError` where `against` matches nothing.
std::vector<std::string> EnableCouples(tarn::ICollisionConfiguration& configuration,
                                       Assembly& assembly,
                                       const Model& model,
                                       const CoupleChoice& choice);

/// The same, all couples with one clearance.
std::vector<std::string> EnableCouples(tarn::IProximityConfiguration& configuration,
                                       double clearance,
                                       Assembly& assembly,
                                       const Model& model,
                                       const CoupleChoice& choice);

}  // namespace tarn::program
