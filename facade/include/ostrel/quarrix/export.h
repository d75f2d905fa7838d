#pragma once

#include "tarn/export.h"

/// Marks what the shared library exports of the object model. Engine and object model are one library.
#define QUARRIX_API TARN_API
