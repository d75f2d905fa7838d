#pragma once

/// Tells the compiler of a condition that holds, so that it leaves out the code for the case that it does not.
#if defined(_MSC_VER)
#define QUARRIX_ASSUME(condition) __assume(condition)
#else
#define QUARRIX_ASSUME(condition)    \
    do {                             \
        if (!(condition)) {          \
            __builtin_unreachable(); \
        }                            \
    } while (false)
#endif
