#pragma once

#include "tarn/export.h"

/// \file
/// What the shared library exports of the object model. Engine and object model are one library.

/// Marks it.
#define QUARRIX_API TARN_API

/// Marks what an exported class keeps to the library.
#if defined(_WIN32)
#define QUARRIX_LOCAL
#else
#define QUARRIX_LOCAL __attribute__((visibility("hidden")))
#endif
