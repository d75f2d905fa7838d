#pragma once

#include "readers/model.h"

#include <string>
#include <vector>

namespace tarn::program {

/// For each part the shortest ending of its name, from behind a slash on, that no other part's name has:
/// paths in assemblies are too long to read side by side. It is never empty unless the name is. Names of
/// whole files stay, and so do names that are the ending of another.
std::vector<std::string> ShortNames(const std::vector<Part>& parts);

}  // namespace tarn::program
