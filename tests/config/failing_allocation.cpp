#include "config/failing_allocation.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int allocations_left = -1;  // below 0: any number

}  // namespace

void* operator new(std::size_t size) {
    void* const memory = allocations_left == 0 ? nullptr : std::malloc(size > 0 ? size : 1);
    if (!memory) throw std::bad_alloc();
    if (allocations_left > 0) --allocations_left;
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

bool tarn::test::RunsOutOfMemory(int allocations, details::FunctionRef<void()> work) {
    bool suffices = true;
    allocations_left = allocations;
    try {
        work();
    } catch (const std::bad_alloc&) {
        suffices = false;
    }
    allocations_left = -1;
    return !suffices;
}
