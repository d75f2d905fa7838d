#include "readers/system_cause.h"

#include <cerrno>
#include <system_error>

namespace tarn::program {

std::string SystemCause() {
    return errno == 0 ? std::string() : " (" + std::generic_category().message(errno) + ")";
}

}  // namespace tarn::program
