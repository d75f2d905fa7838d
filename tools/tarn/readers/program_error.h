#pragma once

#include <stdexcept>
#include <string>

namespace tarn::program {

/// The task could not be done. The text is one sentence for the user that names the file and the cause. The
/// program prints it and ends with exit status 2.
class ProgramError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A file's content contradicts its format. The text names the place inside the file (line or facet) and the
/// cause; whoever knows the file's name puts it in front.
class FormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace tarn::program
