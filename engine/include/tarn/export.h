#pragma once

/// \file
/// What the shared library exports. Everything else is hidden.

/// \def TARN_API
/// Marks what the shared library exports.

#if defined(_WIN32)
#if defined(TARN_STATIC)
#define TARN_API
#elif defined(TARN_BUILDING)
#define TARN_API __declspec(dllexport)
#else
#define TARN_API __declspec(dllimport)
#endif
#else
#define TARN_API __attribute__((visibility("default")))
#endif
