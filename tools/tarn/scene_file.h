#pragma once

#include "couple_check.h"
#include "readers/model.h"

#include "tarn/collision_body.h"
#include "tarn/collision_configuration.h"
#include "tarn/proximity_configuration.h"

#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace tarn::program {

/// A configuration read from a scene file. The last one to let go of it releases its bodies and elements,
/// too.
using Scene = std::variant<std::shared_ptr<tarn::ICollisionConfiguration>,
                           std::shared_ptr<tarn::IProximityConfiguration>>;

/// Whether a file is taken as a scene: its name ends in ".xml", or it begins with "<scene".
bool LooksLikeScene(const std::string& path);

/// Reads a scene of either kind. Throws `ProgramError`, naming the file and the place in it.
Scene ReadScene(const std::string& path);

/// Writes the configuration of a check, whole or not at all. Throws `ProgramError`.
void WriteScene(CoupleCheck& check, const std::string& path);

/// The parts that bodies of a scene stand for, in the order of the bodies, and their owners, whose numbers
/// stand for names. Without meshes.
Model ModelOf(const std::vector<tarn::ICollisionBody*>& bodies);

}  // namespace tarn::program
