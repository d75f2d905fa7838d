#pragma once

#include <cstdint>

namespace tarn::details {

/// Names a couple of bodies: the smaller identifier in the upper half, the larger in the lower, so that the
/// order in which they are given does not matter.
using PairKey = std::uint64_t;

constexpr PairKey MakePairKey(std::uint32_t id1, std::uint32_t id2) {
    const std::uint64_t smaller = id1 <= id2 ? id1 : id2;
    const std::uint64_t larger = id1 <= id2 ? id2 : id1;
    return (smaller << 32) | larger;
}

/// Whether one of the couple's bodies has the identifier.
constexpr bool KeyContains(PairKey key, std::uint32_t id) {
    return static_cast<std::uint32_t>(key) == id || static_cast<std::uint32_t>(key >> 32) == id;
}

/// Whether all set bits of the identifier are set in one of the couple's identifiers. By this test, not by
/// equality, a removed body takes couples with it; identifier 0 touches every couple.
constexpr bool KeyIsTouchedBy(PairKey key, std::uint32_t id) {
    return (id & ~static_cast<std::uint32_t>(key)) == 0 || (id & ~static_cast<std::uint32_t>(key >> 32)) == 0;
}

}  // namespace tarn::details
