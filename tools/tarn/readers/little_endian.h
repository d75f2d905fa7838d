#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn::program {

/// The number that `size` bytes, four at most, hold from `offset` on: little-endian in the file, whatever this
/// machine is. The bytes must be there.
inline std::uint32_t UnsignedAt(std::string_view bytes, std::size_t offset, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t index = size; index-- > 0;) {
        value = (value << 8U) | static_cast<unsigned char>(bytes[offset + index]);
    }
    return value;
}

inline std::uint32_t WordAt(std::string_view bytes, std::size_t offset) {
    return UnsignedAt(bytes, offset, sizeof(std::uint32_t));
}

}  // namespace tarn::program
