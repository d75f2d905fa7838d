#pragma once

#include "core/function_ref.h"

#include <cstddef>

namespace tarn::test {

/// Runs `work` with so many allocations for the calling thread and no more. True when they did not suffice.
bool RunsOutOfMemory(int allocations, details::FunctionRef<void()> work);

/// Allocations of the calling thread less those that it released.
std::ptrdiff_t LiveAllocations();

}  // namespace tarn::test
