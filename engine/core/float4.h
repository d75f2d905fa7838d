#pragma once

namespace tarn::details {

/// Four numbers side by side: arithmetic, comparisons and `[]` by number. An extension of GCC and Clang, for
/// loops that they do not turn into wide instructions of their own accord.
using Float4 = float __attribute__((vector_size(16)));

inline Float4 Uniform4(float value) {
    return Float4{value, value, value, value};
}

inline Float4 Load4(const float* values) {
    return Float4{values[0], values[1], values[2], values[3]};
}

/// The second operand stays where one is no number.
inline Float4 Min(Float4 a, Float4 b) {
    return a < b ? a : b;
}
inline Float4 Max(Float4 a, Float4 b) {
    return a > b ? a : b;
}

}  // namespace tarn::details
