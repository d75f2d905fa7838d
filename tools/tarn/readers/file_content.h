#pragma once

#include <filesystem>
#include <string>

namespace tarn::program {

/// All bytes of a file, which may also be a pipe. Throws `ProgramError`, naming the file, for a folder and
/// for what is missing or unreadable.
std::string ReadWholeFile(const std::filesystem::path& path);

}  // namespace tarn::program
