#include "readers/gltf_buffers.h"

#include "readers/file_content.h"
#include "readers/printable_text.h"
#include "readers/program_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tarn::program {
namespace {

namespace fs = std::filesystem;

/// Replaces "%20" and its like by the bytes that they stand for.
std::string PercentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t index = 0; index < text.size(); ++index) {
        unsigned code = 0;
        const std::string_view digits = text.substr(index + 1, 2);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
        const bool is_code =
            text[index] == '%' && digits.size() == 2 && end == digits.data() + 2 && error == std::errc();
        decoded.push_back(is_code ? static_cast<char>(code) : text[index]);
        if (is_code) index += 2;
    }
    return decoded;
}

/// The library knows but some media types, so it is given one of those instead of the file's.
std::string DecodedData(const std::string& uri) {
    const std::size_t comma = uri.find(',');
    const bool is_base64 = comma != std::string::npos && uri.substr(0, comma).ends_with(";base64");
    std::vector<unsigned char> data;
    std::string kind;
    if (!is_base64 ||
        !tinygltf::DecodeDataURI(&data, kind, "data:application/octet-stream;base64" + uri.substr(comma), 0,
                                 false)) {
        throw FormatError("its data cannot be decoded");
    }
    return {data.begin(), data.end()};
}

bool IsBelow(const fs::path& path, const fs::path& folder) {
    const auto [in_folder, in_path] = std::ranges::mismatch(folder, path);
    return in_folder == folder.end() && in_path != path.end();
}

}  // namespace

GltfBuffers::GltfBuffers(const std::vector<GltfBufferSource>& sources,
                         std::optional<std::string_view> binary,
                         const LoadNeighbour& load_neighbour) {
    for (const GltfBufferSource& source : sources) {
        try {
            if (source.uri.empty() && !binary) throw FormatError("there is no binary chunk");
            const std::string_view content =
                source.uri.empty() ? *binary : ContentOf(source.uri, load_neighbour);
            if (content.size() < source.byte_length) {
                throw FormatError(
                    fmt::format("{} bytes are promised, there are {}", source.byte_length, content.size()));
            }
            bytes_.push_back(content.substr(0, source.byte_length));
        } catch (const FormatError& error) {
            throw FormatError(fmt::format("buffers[{}]: {}", bytes_.size(), error.what()));
        }
    }
}

std::string_view GltfBuffers::ContentOf(const std::string& uri, const LoadNeighbour& load_neighbour) {
    const auto [content, is_new] = contents_.try_emplace(uri);
    if (is_new) {
        content->second = uri.starts_with("data:") ? DecodedData(uri) : load_neighbour(PercentDecoded(uri));
    }
    return content->second;
}

std::string LoadBelow(const std::string& folder, const std::string& relative_path) {
    const auto fail = [&relative_path](const std::string& cause) {
        throw FormatError(fmt::format("'{}' {}", Excerpt(relative_path), cause));
    };
    const fs::path relative(relative_path);
    const bool has_scheme = relative_path.find(':') != std::string::npos;
    const bool climbs = std::ranges::find(relative, "..") != relative.end();
    const bool has_odd_bytes = relative_path.find('\0') != std::string::npos;
    if (has_scheme || climbs || has_odd_bytes || relative.is_absolute() || relative_path.starts_with('\\')) {
        fail("is not a path below the file's folder");
    }
    std::error_code error;
    const fs::path root = fs::canonical(folder.empty() ? fs::path(".") : fs::path(folder), error);
    const fs::path path = error ? fs::path() : fs::canonical(root / relative, error);
    if (error) fail("cannot be opened (" + error.message() + ")");
    if (!IsBelow(path, root)) fail("is a link out of the file's folder");
    if (!fs::is_regular_file(path, error)) fail("is not a regular file");
    try {
        return ReadWholeFile(path);
    } catch (const ProgramError& cause) {
        throw FormatError(cause.what());
    }
}

}  // namespace tarn::program
