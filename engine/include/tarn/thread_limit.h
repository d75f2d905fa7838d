#pragma once

#include "tarn/export.h"

#include <cstddef>
#include <functional>

namespace tarn {

/// Runs `work` on the calling thread; everything that the library starts in parallel inside it uses at most
/// `limit` threads, the calling one included. Limits nest, and nothing outside the call is affected. With a
/// limit of 1 all work stays on the calling thread, takes the same code path and gives the same answers. What
/// `work` throws comes out of the call. Throws `InvalidArgumentException` for a limit of 0. Safe from any
/// thread.
TARN_API void RunWithThreadLimit(std::size_t limit, const std::function<void()>& work);

}  // namespace tarn
