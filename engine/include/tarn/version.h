#pragma once

#include "tarn/export.h"

#include <string>

namespace tarn {

/// The library's name and version as one line, newline included: "Tarn v0.4.0.0\n". Safe from any thread.
TARN_API std::string GetVersionText();

}  // namespace tarn
