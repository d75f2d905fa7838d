#pragma once

#if defined(_MSC_VER) && !defined(__clang__)
#include <xmmintrin.h>
#endif

namespace tarn::details {

/// Asks for the cache line at an address ahead of its use. A hint: it waits for nothing and changes nothing.
/// The only place that names compilers' own words for it.
inline void Prefetch(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address);
#elif defined(_MSC_VER) && (defined(_M_X64) || defined(_M_IX86))
    _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
#else
    static_cast<void>(address);
#endif
}

}  // namespace tarn::details
