#pragma once

#include "tarn/collision_configuration.h"
#include "tarn/proximity_configuration.h"

#include <iosfwd>

namespace tarn::details {

/// Throws `InvalidArgumentException`, naming the body, for what could be written but not read again.
void RequireStorable(const ICollisionConfiguration& configuration);
void RequireStorable(const IProximityConfiguration& configuration);

/// Writes the scene of a configuration piece by piece: no document is held in memory.
void WriteScene(const ICollisionConfiguration& configuration, std::ostream& stream);
void WriteScene(const IProximityConfiguration& configuration, std::ostream& stream);

}  // namespace tarn::details
