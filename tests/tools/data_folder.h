#pragma once

#include <cstdlib>
#include <filesystem>

namespace tarn::program {

/// Where real assemblies and parts lie. They are no part of the project: the build says where they are, or
/// the variable TARN_DATA does. Tests that need them are skipped where the folder is not there.
inline std::filesystem::path DataFolder() {
    const char* const folder = std::getenv("TARN_DATA");
    return folder == nullptr ? TARN_DATA_DIR : folder;
}

}  // namespace tarn::program
