#include "config/failing_allocation.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int allocations_left = -1;  // below 0: any number
thread_local std::ptrdiff_t live_allocations = 0;

/// `memory` where it is some and may be handed out.
void* HandOut(void* memory) {
    if (!memory || allocations_left == 0) {
        std::free(memory);
        throw std::bad_alloc();
    }
    if (allocations_left > 0) --allocations_left;
    ++live_allocations;
    return memory;
}

void Release(void* memory) {
    if (memory) --live_allocations;
    std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
    return HandOut(std::malloc(size > 0 ? size : 1));
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    const auto step = static_cast<std::size_t>(alignment);
    return HandOut(std::aligned_alloc(step, (size + step - 1) / step * step));
}

void operator delete(void* memory) noexcept {
    Release(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    Release(memory);
}

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept {
    Release(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    Release(memory);
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

std::ptrdiff_t tarn::test::LiveAllocations() {
    return live_allocations;
}
