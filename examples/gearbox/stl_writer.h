#pragma once

#include "gearbox/solid.h"

#include <filesystem>

namespace gearbox {

/// Writes a binary STL file: vertices as 32-bit floats, unit normals, little-endian whatever the machine.
/// Throws `std::runtime_error`, naming the file, where it cannot be written in full.
void WriteStl(const std::filesystem::path& file, const Solid& solid);

}  // namespace gearbox
