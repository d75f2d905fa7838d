#pragma once

#include "couple_choice.h"
#include "readers/length_unit.h"

#include <string>
#include <vector>

namespace tarn::program {

/// Which assembly a command is about, and which of its couples.
struct AssemblyOptions {
    std::vector<std::string> files;            ///< the same file may come more than once
    LengthUnit unit = LengthUnit::Millimetre;  ///< of files that state none
    CoupleChoice couples;
};

}  // namespace tarn::program
