#include "core/parallel.h"

#include "tarn/exception.h"
#include "tarn/thread_limit.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace tarn::details {
namespace {

TEST(Parallel, LoopCoversEveryItemOnceAndGathersWhatEachThreadSaw) {
    for (const std::size_t count : {0U, 1U, 7U, 100'000U}) {
        for (const std::size_t chunk : {1U, 10U, 1024U}) {
            std::vector<int> visits(count, 0);
            Combinable<std::size_t> gathered;
            ParallelFor(count, chunk, [&](std::size_t begin, std::size_t end) {
                ASSERT_LT(begin, end);
                for (std::size_t i = begin; i < end; ++i) ++visits[i];
                gathered.Local() += end - begin;
            });
            EXPECT_EQ(visits, std::vector<int>(count, 1));
            std::size_t all = 0;
            gathered.ForEach([&](std::size_t local) { all += local; });
            EXPECT_EQ(all, count);
        }
    }
}

TEST(Parallel, CarriesExceptionsToTheCallerAfterAllWorkEnded) {
    std::atomic<int> running{0};
    const auto throws_at_500 = [&](std::size_t begin, std::size_t) {
        ++running;
        std::this_thread::yield();
        --running;
        if (begin == 500) throw std::runtime_error("item");
    };
    EXPECT_THROW(ParallelFor(1000, 1, throws_at_500), std::runtime_error);
    EXPECT_EQ(running.load(), 0);
    EXPECT_THROW(ParallelInvoke([] {}, [] { throw std::logic_error("job"); }), std::logic_error);
    EXPECT_THROW(RunWithThreadLimit(2, [] { throw std::runtime_error("work"); }), std::runtime_error);
}

// Each outer item marks its thread as busy and then waits in an inner loop. If the wait picked up another
// outer item, that would find its thread busy.
TEST(Parallel, WaitingThreadsTakeNoForeignWork) {
    Combinable<bool> is_busy;
    std::atomic<int> nested{0};
    ParallelFor(200, 1, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            bool& busy = is_busy.Local();
            if (busy) ++nested;
            busy = true;
            ParallelFor(64, 1, [](std::size_t, std::size_t) { std::this_thread::yield(); });
            busy = false;
        }
    });
    EXPECT_EQ(nested.load(), 0);
}

TEST(Parallel, ObeysThreadLimitsEvenNested) {
    const auto threads_of_a_loop = [] {
        Combinable<int> threads;
        ParallelFor(2000, 1, [&](std::size_t, std::size_t) {
            threads.Local() = 1;
            std::this_thread::yield();
        });
        std::size_t count = 0;
        threads.ForEach([&](int) { ++count; });
        return count;
    };
    RunWithThreadLimit(1, [&] {
        const auto self = std::this_thread::get_id();
        ParallelFor(100, 1, [&](std::size_t, std::size_t) { EXPECT_EQ(std::this_thread::get_id(), self); });
        RunWithThreadLimit(8,
                           [&] { EXPECT_EQ(threads_of_a_loop(), 1U) << "an inner limit raised the outer"; });
    });
    RunWithThreadLimit(2, [&] { EXPECT_LE(threads_of_a_loop(), 2U); });
    EXPECT_THROW(RunWithThreadLimit(0, [] {}), InvalidArgumentException);
}

}  // namespace
}  // namespace tarn::details
