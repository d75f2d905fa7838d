#pragma once

#include <cstddef>

namespace tarn {

/// The placement of a body: a row-major 3x4 matrix, by default the identity.
///
/// A local point p maps to the world point
///     x' = m[0] x + m[1] y + m[2]  z + m[3]
///     y' = m[4] x + m[5] y + m[6]  z + m[7]
///     z' = m[8] x + m[9] y + m[10] z + m[11]
/// Translations are in the caller's length unit. Nothing checks that the 3x3 part is a rotation: scales,
/// shears and mirrors are applied as they stand. Two matrices are the same placement only when all their
/// bytes are equal, so -0.0 and 0.0 differ.
struct MATRIX {
    /// Row by row.
    double m[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};

    ///@{
    /// The number at an index below 12.
    double& operator[](std::size_t index) { return m[index]; }
    const double& operator[](std::size_t index) const { return m[index]; }
    ///@}
};

}  // namespace tarn
