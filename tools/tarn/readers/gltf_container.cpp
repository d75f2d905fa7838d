#include "readers/gltf_container.h"

#include "readers/little_endian.h"
#include "readers/program_error.h"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>

namespace tarn::program {
namespace {

constexpr std::string_view kMagic = "glTF";
constexpr std::size_t kHeaderSize = 12;      // magic, version, length of the file
constexpr std::size_t kChunkHeaderSize = 8;  // length of the data, kind
constexpr std::uint32_t kVersion = 2;
constexpr std::uint32_t kJsonKind = 0x4e4f534a;    // "JSON"
constexpr std::uint32_t kBinaryKind = 0x004e4942;  // "BIN"

}  // namespace

bool LooksLikeGlb(std::string_view bytes) {
    return bytes.starts_with(kMagic);
}

GltfContainer SplitGltf(std::string_view bytes) {
    if (!LooksLikeGlb(bytes)) return {bytes, {}};
    if (bytes.size() < kHeaderSize) throw FormatError("ends inside the header");
    if (const std::uint32_t version = WordAt(bytes, 4); version != kVersion) {
        throw FormatError(fmt::format("is GLB of version {}, only {} is read", version, kVersion));
    }
    const std::size_t length = WordAt(bytes, 8);
    if (length > bytes.size()) {
        throw FormatError(fmt::format("header promises {} bytes, the file holds {}", length, bytes.size()));
    }

    GltfContainer container;
    bool has_json = false;
    for (std::size_t offset = kHeaderSize; offset < length;) {
        if (length - offset < kChunkHeaderSize) throw FormatError("ends inside the header of a chunk");
        const std::size_t size = WordAt(bytes, offset);
        const std::uint32_t kind = WordAt(bytes, offset + 4);
        offset += kChunkHeaderSize;
        if (size > length - offset) {
            throw FormatError(
                fmt::format("a chunk promises {} bytes, the file holds {} more", size, length - offset));
        }
        const std::string_view data = bytes.substr(offset, size);
        if (!has_json) {
            if (kind != kJsonKind) throw FormatError("first chunk is not JSON");
            container.json = data;
            has_json = true;
        } else if (kind == kBinaryKind && !container.binary) {
            container.binary = data;
        }
        offset += size;
    }
    if (!has_json) throw FormatError("holds no JSON");
    return container;
}

}  // namespace tarn::program
