#pragma once

#include "readers/program_error.h"

#include <string>

namespace tarn::program {

/// The text of the error that reading ends with, empty where it succeeds.
template <typename Error = FormatError, typename Read>
std::string ErrorOf(const Read& read) {
    try {
        read();
    } catch (const Error& error) {
        return error.what();
    }
    return {};
}

}  // namespace tarn::program
