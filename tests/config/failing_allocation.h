#pragma once

#include "core/function_ref.h"

namespace tarn::test {

/// Runs `work` with so many allocations for the calling thread and no more. True when they did not suffice.
bool RunsOutOfMemory(int allocations, details::FunctionRef<void()> work);

}  // namespace tarn::test
