#pragma once

#include <cstring>

namespace tarn::test {

/// Equal to the last bit: -0.0 differs from 0.0, and NaN equals itself. For types without padding.
template <typename Value>
bool SameBits(const Value& a, const Value& b) {
    return std::memcmp(&a, &b, sizeof(Value)) == 0;
}

}  // namespace tarn::test
