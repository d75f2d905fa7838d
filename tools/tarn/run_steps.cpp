#include "run_steps.h"

#include "tarn/thread_limit.h"

#include <chrono>

namespace tarn::program {

double SecondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void LimitThreads(std::size_t limit, const std::function<void()>& work) {
    if (limit == 0) return work();
    tarn::RunWithThreadLimit(limit, work);
}

}  // namespace tarn::program
