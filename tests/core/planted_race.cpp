/// A program with a race between two tasks of one loop, which ThreadSanitizer must report. It keeps the
/// arrangement in core/parallel.cpp honest: if that declared more order than there is, real races would go
/// unseen.

#include "core/parallel.h"

#include <chrono>
#include <cstddef>
#include <thread>

int main() {
    static int shared = 0;
    for (int round = 0; round < 20; ++round) {
        tarn::details::ParallelFor(64, 1, [](std::size_t begin, std::size_t end) {
            for (std::size_t i = begin; i < end; ++i) {
                ++shared;
                std::this_thread::sleep_for(std::chrono::microseconds(50));
            }
        });
    }
    return shared == 0 ? 1 : 0;
}
