#pragma once

#include <bit>
#include <cstdint>

namespace tarn::details {

/// A triangle in single precision, as trees of filters are built from: a vertex is one vector of four.
struct alignas(16) NarrowTriangle {
    /// x, y, z. The fourth number of the first vertex holds the index, the others are 0.
    float vertex[3][4];

    /// Which triangle of a list this is.
    std::uint32_t Index() const { return std::bit_cast<std::uint32_t>(vertex[0][3]); }
    void SetIndex(std::uint32_t index) { vertex[0][3] = std::bit_cast<float>(index); }
};

}  // namespace tarn::details
