#pragma once

#include <cstdint>

namespace tarn::details {

/// Whether a detector uses everything that helps to skip, or just the rules. The answers are the same: tests
/// and benchmarks compare both.
enum class Filters : std::uint8_t { Off, On };

}  // namespace tarn::details
