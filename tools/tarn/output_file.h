#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace tarn::program {

/// Writes a file whole or not at all, as `details::WriteWholeFile` does. Throws `ProgramError`, naming the
/// target, where the file cannot be written; what `write` throws comes out as it is.
void WriteOutputFile(const std::filesystem::path& target, const std::function<void(std::ostream&)>& write);

/// Whether writing to one path changes what is behind the other: the same regular file, whatever the names
/// and links, or the same name of a file that is not there yet.
bool IsSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

/// An output must be neither an input nor another output: all are lost then, or one. Empty outputs are none.
/// Throws `ProgramError`.
void RefuseOverwriting(const std::vector<std::string>& inputs, const std::vector<std::string>& outputs);

}  // namespace tarn::program
