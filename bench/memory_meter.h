#pragma once

#include <cstddef>

/// \file
/// Memory figures for benchmarks on Linux. Programs that link this have `operator new` and `delete` replaced
/// by counting ones.

namespace tarn::bench {

/// Bytes that `operator new` has handed out and not got back.
std::size_t LiveBytes();
/// The most of them at once since the last call of `ResetPeakBytes`.
std::size_t PeakBytes();
void ResetPeakBytes();

/// Memory that the machine could still give.
std::size_t AvailableBytes();

}  // namespace tarn::bench
