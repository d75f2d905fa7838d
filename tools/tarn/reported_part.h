#pragma once

#include <string>

namespace tarn::program {

/// One side of a reported couple.
struct ReportedPart {
    std::string name;
    std::string short_name;  ///< for the eye: see `ShortNames`
    std::string owner;
};

}  // namespace tarn::program
