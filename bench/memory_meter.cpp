#include "memory_meter.h"

#include <malloc.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <new>
#include <string>

namespace tarn::bench {

namespace {

// Relaxed throughout: the figures are read when the measured work has ended.
std::atomic<std::size_t> live_bytes{0};
std::atomic<std::size_t> peak_bytes{0};

void* CountedAllocate(std::size_t size, std::size_t alignment) {
    void* pointer = nullptr;
    if (posix_memalign(&pointer, alignment, size) != 0) throw std::bad_alloc();
    const std::size_t bytes = malloc_usable_size(pointer);
    const std::size_t live = live_bytes.fetch_add(bytes, std::memory_order_relaxed) + bytes;
    std::size_t peak = peak_bytes.load(std::memory_order_relaxed);
    while (live > peak && !peak_bytes.compare_exchange_weak(peak, live, std::memory_order_relaxed)) {
    }
    return pointer;
}

void CountedFree(void* pointer) {
    if (!pointer) return;
    live_bytes.fetch_sub(malloc_usable_size(pointer), std::memory_order_relaxed);
    std::free(pointer);
}

}  // namespace

std::size_t LiveBytes() {
    return live_bytes.load(std::memory_order_relaxed);
}

std::size_t PeakBytes() {
    return peak_bytes.load(std::memory_order_relaxed);
}

void ResetPeakBytes() {
    peak_bytes.store(LiveBytes(), std::memory_order_relaxed);
}

std::size_t AvailableBytes() {
    std::ifstream file("/proc/meminfo");
    for (std::string word; file >> word;) {
        std::size_t kilobytes = 0;
        if (word == "MemAvailable:" && file >> kilobytes) return kilobytes * 1024;
    }
    return static_cast<std::size_t>(sysconf(_SC_AVPHYS_PAGES)) *
           static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace tarn::bench

void* operator new(std::size_t size) {
    return tarn::bench::CountedAllocate(size, alignof(std::max_align_t));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return tarn::bench::CountedAllocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* pointer) noexcept {
    tarn::bench::CountedFree(pointer);
}
void operator delete(void* pointer, std::size_t) noexcept {
    tarn::bench::CountedFree(pointer);
}
void operator delete(void* pointer, std::align_val_t) noexcept {
    tarn::bench::CountedFree(pointer);
}
void operator delete(void* pointer, std::size_t, std::align_val_t) noexcept {
    tarn::bench::CountedFree(pointer);
}
