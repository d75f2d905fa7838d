#pragma once

#include <cstdint>

namespace tarn::details {

/// 64-bit FNV-1a (G. Fowler, L. C. Noll, K.-P. Vo) over the eight bytes of a key, least significant byte
/// first.
constexpr std::uint64_t Fnv1a(std::uint64_t key) {
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (int byte = 0; byte < 8; ++byte) {
        hash ^= (key >> (8 * byte)) & 0xffU;
        hash *= 0x100000001b3U;
    }
    return hash;
}

}  // namespace tarn::details
