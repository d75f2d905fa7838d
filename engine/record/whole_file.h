#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <system_error>

namespace tarn::details {

/// Writes a file whole or not at all: `write` fills a temporary file beside the target, which then takes the
/// target's name. Symbolic links are followed, and an existing file keeps its permissions; a read-only one is
/// refused. A target that exists and is no regular file (a device, a pipe) is written directly, and so is one
/// beside which no temporary file can be made.
///
/// Returns an error where the file cannot be opened or written; what `write` throws comes out as it is. In
/// both cases an older file is as it was, unless it was written directly, and no temporary file is left.
[[nodiscard]] std::error_code WriteWholeFile(const std::filesystem::path& target,
                                             const std::function<void(std::ostream&)>& write);

}  // namespace tarn::details
