#pragma once

#include "ostrel/quarrix/exceptions.h"
#include "ostrel/quarrix/text.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// Throws `ArgumentNullException` with the parameter's name for null.
template <typename T>
void RequireNotNull(const std::shared_ptr<T>& object, Text param_name) {
    if (!object) throw ArgumentNullException(param_name);
}

}  // namespace Ostrel::Quarrix::Collisions
