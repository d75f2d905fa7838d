#pragma once

#include <string>

namespace tarn::program {

/// What the system says about the failure just met, from `errno`, in parentheses behind a blank: " (No space
/// left on device)". Empty when it says nothing. The standard streams tell no causes of their own, so set
/// `errno` to 0 before the operation.
std::string SystemCause();

}  // namespace tarn::program
