#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>

namespace tarn::program {

/// Writes a file whole or not at all: `write` fills a temporary file beside the target, which then takes the
/// target's name. Symbolic links are followed, and an existing file keeps its permissions; a read-only one is
/// refused. A target that exists and is no regular file (a device, a pipe) is written directly.
///
/// Throws `ProgramError`, naming the target, where the file cannot be written; what `write` throws comes out
/// as it is. In both cases an older file is as it was and no temporary file is left.
void WriteOutputFile(const std::filesystem::path& target, const std::function<void(std::ostream&)>& write);

}  // namespace tarn::program
