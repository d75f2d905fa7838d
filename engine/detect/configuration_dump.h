#pragma once

#include "tarn/collision_body.h"
#include "tarn/dump_type.h"

#include <iosfwd>
#include <vector>

namespace tarn::details {

/// Writes the bodies of a configuration as one ASCII STL solid, as the detectors' `Dump` promises. Throws
/// `std::bad_cast` for a body of a foreign class and `LogicException` for one that was never built, both
/// before anything is written.
void DumpBodies(const std::vector<ICollisionBody*>& bodies, DumpType type, std::ostream& stream);

}  // namespace tarn::details
