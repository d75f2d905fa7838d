#include "ostrel/quarrix/object.h"

#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/exceptions.h"

namespace Ostrel::Quarrix::Collisions {

namespace {

constexpr std::uint32_t kFirstWord = 0x0000FFFF;
constexpr std::uint32_t kLastWord = 0xFFFF0000;

/// The next larger word with as many set bits (R. W. Gosper's step, HAKMEM item 175); the first one again
/// after the last.
std::uint32_t NextWord(std::uint32_t word) {
    if (word == kLastWord) return kFirstWord;
    const std::uint32_t lowest = word & (~word + 1);
    const std::uint32_t ripple = word + lowest;
    return ripple | (((word ^ ripple) / lowest) >> 2);
}

/// No order between words matters, so relaxed operations do.
std::uint32_t DrawWord() {
    static std::atomic<std::uint32_t> next{kFirstWord};
    std::uint32_t word = next.load(std::memory_order_relaxed);
    while (!next.compare_exchange_weak(word, NextWord(word), std::memory_order_relaxed)) {
    }
    return word;
}

}  // namespace

Object::~Object() = default;

bool Object::Equals(const Object* other) const {
    return other == this;
}

std::int32_t Object::GetHashCode() const {
    std::uint32_t word = hash_word_.load(std::memory_order_relaxed);
    if (word == 0) {
        const std::uint32_t drawn = DrawWord();
        // Another thread may have been first: then its word is the object's.
        if (hash_word_.compare_exchange_strong(word, drawn, std::memory_order_relaxed)) word = drawn;
    }
    return static_cast<std::int32_t>(word);
}

void DisposableRecord::RequireNotDisposed() const {
    if (disposed_) throw ObjectDisposedException("");
}

}  // namespace Ostrel::Quarrix::Collisions
