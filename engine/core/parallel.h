#pragma once

#include "core/function_ref.h"

#include <atomic>
#include <cstddef>
#include <thread>
#include <utility>

/// \file
/// All parallelism of the library, a thin layer over oneTBB. Nothing else includes a header of the runtime.
///
/// What holds for every call here:
///  (1) It returns when all its work has ended; what the work wrote is visible to the caller then.
///  (2) What the work throws leaves the call, after all running work has ended; of several exceptions one
///      does.
///  (3) A thread that waits inside a call takes over work of that call only, never foreign work. So a stack
///      does not grow by what happens to be waiting elsewhere, and two claims (see `CollisionBody::Update`)
///      cannot wait for each other.
///  (4) With one thread all work runs on the caller, on the same code path.

namespace tarn::details {

/// Says to running loops that further work is pointless. Safe from any thread.
class CancellationSource {
public:
    /// Relaxed order: the flag only ends work early; what was found travels with the end of the loop.
    void Cancel() noexcept { is_cancelled_.store(true, std::memory_order_relaxed); }
    bool IsCancelled() const noexcept { return is_cancelled_.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> is_cancelled_{false};
};

/// Calls `body(begin, end)` for disjoint ranges that together cover [0, count). Ranges of up to `chunk` items
/// are not split any further; a loop that fits into one chunk runs on the calling thread.
void ParallelFor(std::size_t count,
                 std::size_t chunk,
                 FunctionRef<void(std::size_t begin, std::size_t end)> body);

/// Runs both jobs, possibly at the same time.
void ParallelInvoke(FunctionRef<void()> first, FunctionRef<void()> second);

/// Runs `work` such that the calls above, inside it, use at most `limit` threads (at least 1), the caller
/// included. An inner limit never exceeds an outer one.
void LimitThreads(std::size_t limit, FunctionRef<void()> work);

/// A value per thread, made when the thread first asks for it, joined after the loop on the calling thread.
///
/// The values hang in a list that only grows, in front, by compare-and-swap. A thread finds its own by its
/// identifier; as only threads of one loop come by, the list is short.
template <typename Value>
class Combinable {
public:
    Combinable() = default;
    Combinable(const Combinable&) = delete;
    Combinable& operator=(const Combinable&) = delete;
    ~Combinable() {
        for (Cell* cell = head_.load(std::memory_order_relaxed); cell;)
            delete std::exchange(cell, cell->next);
    }

    /// The calling thread's value. Safe from any thread.
    Value& Local() {
        const std::thread::id self = std::this_thread::get_id();
        // Acquire: a cell that is seen in the list is seen whole.
        Cell* const seen = head_.load(std::memory_order_acquire);
        for (Cell* cell = seen; cell; cell = cell->next) {
            if (cell->owner == self) return cell->value;
        }
        auto* const added = new Cell{self, seen, {}};
        // Release: publishes the cell. Whoever came in between added cells of other threads.
        while (!head_.compare_exchange_weak(added->next, added, std::memory_order_release,
                                            std::memory_order_relaxed)) {
        }
        return added->value;
    }

    /// Visits every value in no fixed order. Only when no thread calls `Local`.
    template <typename Visitor>
    void ForEach(Visitor visit) {
        for (Cell* cell = head_.load(std::memory_order_acquire); cell; cell = cell->next) visit(cell->value);
    }

private:
    struct Cell {
        std::thread::id owner;
        Cell* next;
        Value value;
    };

    std::atomic<Cell*> head_{nullptr};
};

}  // namespace tarn::details
