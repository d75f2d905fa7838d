#pragma once

#include "readers/program_error.h"

#include <string>

namespace tarn::program {

/// The text of the `FormatError` that reading ends with, empty where it succeeds.
template <typename Read>
std::string FormatErrorOf(const Read& read) {
    try {
        read();
    } catch (const FormatError& error) {
        return error.what();
    }
    return {};
}

}  // namespace tarn::program
