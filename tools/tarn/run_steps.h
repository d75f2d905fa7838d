#pragma once

#include <cstddef>
#include <functional>

namespace tarn::program {

/// Does the work and returns how long it took, in seconds.
double SecondsOf(const std::function<void()>& work);

/// Does the work with at most so many threads, or with as many as there are for 0.
void LimitThreads(std::size_t limit, const std::function<void()>& work);

}  // namespace tarn::program
