#include "core/parallel.h"

#include "tarn/exception.h"
#include "tarn/thread_limit.h"

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/parallel_invoke.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <climits>

// ThreadSanitizer does not see the synchronisation inside oneTBB, which is not instrumented, and takes every
// hand-over of work for a race. So builds with that sanitizer compile this file, alone, without it, and the
// hand-overs are declared here: a start that happens before every task, and an end that happens after all of
// them. Tasks stay unordered among one another, so a race between two of them is still reported.
#ifdef TARN_ANNOTATE_FOR_THREAD_SANITIZER
extern "C" {
void __tsan_acquire(void* address);
void __tsan_release(void* address);
}
#endif

namespace tarn::details {

namespace {

class HandOver {
public:
    HandOver() { Release(&start_); }

    void TaskBegins() { Acquire(&start_); }
    void TaskEnds() { Release(&end_); }
    void AllEnded() { Acquire(&end_); }

private:
#ifdef TARN_ANNOTATE_FOR_THREAD_SANITIZER
    static void Acquire(char* address) {
        __tsan_acquire(address);
    }
    static void Release(char* address) {
        __tsan_release(address);
    }
#else
    static void Acquire(char* /*address*/) {}
    static void Release(char* /*address*/) {}
#endif

    char start_ = 0;
    char end_ = 0;
};

/// Brackets one task; the end is declared for tasks that throw, too.
class Task {
public:
    explicit Task(HandOver& hand_over) : hand_over_(hand_over) { hand_over_.TaskBegins(); }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task() { hand_over_.TaskEnds(); }

private:
    HandOver& hand_over_;
};

/// Brackets the waiting call.
class Wait {
public:
    explicit Wait(HandOver& hand_over) : hand_over_(hand_over) {}
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;
    ~Wait() { hand_over_.AllEnded(); }

private:
    HandOver& hand_over_;
};

}  // namespace

void ParallelFor(std::size_t count,
                 std::size_t chunk,
                 FunctionRef<void(std::size_t begin, std::size_t end)> body) {
    if (count == 0) return;
    if (count <= chunk) {
        body(0, count);
        return;
    }
    HandOver hand_over;
    const Wait wait(hand_over);
    tbb::this_task_arena::isolate([&] {
        tbb::parallel_for(tbb::blocked_range<std::size_t>(0, count, std::max<std::size_t>(chunk, 1)),
                          [&](const tbb::blocked_range<std::size_t>& range) {
                              const Task task(hand_over);
                              body(range.begin(), range.end());
                          });
    });
}

void ParallelInvoke(FunctionRef<void()> first, FunctionRef<void()> second) {
    HandOver hand_over;
    const Wait wait(hand_over);
    const auto run = [&hand_over](FunctionRef<void()> job) {
        const Task task(hand_over);
        job();
    };
    tbb::this_task_arena::isolate([&] { tbb::parallel_invoke([&] { run(first); }, [&] { run(second); }); });
}

void LimitThreads(std::size_t limit, FunctionRef<void()> work) {
    const int outer_limit = tbb::this_task_arena::max_concurrency();
    tbb::task_arena arena(static_cast<int>(std::min(limit, static_cast<std::size_t>(outer_limit))));
    HandOver hand_over;
    const Wait wait(hand_over);
    arena.execute([&] {
        const Task task(hand_over);
        work();
    });
}

}  // namespace tarn::details

namespace tarn {

void RunWithThreadLimit(std::size_t limit, const std::function<void()>& work) {
    if (limit == 0) throw InvalidArgumentException("The thread limit must be at least 1", "limit");
    details::LimitThreads(limit, work);
}

}  // namespace tarn
