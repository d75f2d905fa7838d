#include "readers/file_content.h"

#include "readers/program_error.h"
#include "readers/system_cause.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <system_error>

namespace tarn::program {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, const std::string& cause) {
    throw ProgramError(fmt::format("{}: {}", path.string(), cause));
}

/// Where reading starts: the size of a regular file and one byte more, so that one read meets the end; a
/// block for what has no size.
std::size_t FirstBlockSize(const std::filesystem::path& path) {
    constexpr std::size_t kBlockSize = 1U << 16U;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return kBlockSize;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    return error ? kBlockSize : static_cast<std::size_t>(size) + 1;
}

}  // namespace

std::string ReadWholeFile(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) Fail(path, "is a folder, not a file");

    errno = 0;
    std::ifstream stream(path, std::ios::binary);
    if (!stream) Fail(path, "cannot be opened" + SystemCause());

    std::string content(FirstBlockSize(path), '\0');
    std::size_t filled = 0;
    while (true) {
        stream.read(content.data() + filled, static_cast<std::streamsize>(content.size() - filled));
        filled += static_cast<std::size_t>(stream.gcount());
        if (stream.bad()) Fail(path, "cannot be read" + SystemCause());
        if (stream.eof()) break;
        content.resize(2 * content.size());
    }
    content.resize(filled);
    return content;
}

}  // namespace tarn::program
