#pragma once

#include "gearbox/gearbox_model.h"

#include <filesystem>
#include <vector>

namespace gearbox {

/// Writes all parts as one binary glTF file in metres, as that format wants it: a node for the gearbox, below
/// it one for each group, below those one for each part. Vertices are welded. Throws `std::runtime_error` on
/// failure.
void WriteGlb(const std::filesystem::path& file, const std::vector<Part>& parts);

}  // namespace gearbox
