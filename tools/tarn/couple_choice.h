#pragma once

#include "assembly.h"
#include "readers/model.h"

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

/// Enables the chosen couples in an assembly that holds the parts in this order and has no couples yet.
/// Returns warnings about patterns that matched nothing. Throws `ProgramError` where `against` matches
/// nothing.
std::vector<std::string> EnableCouples(Assembly& assembly,
                                       const std::vector<Part>& parts,
                                       const std::vector<std::string>& owners,
                                       const CoupleChoice& choice);

}  // namespace tarn::program
