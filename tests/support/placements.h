#pragma once

#include "tarn/matrix.h"

#include <random>

namespace tarn::test {

MATRIX Translation(double x, double y, double z);

/// A rotation about a random axis, uniform over all rotations, and a translation of up to `reach` on each
/// axis.
MATRIX RandomRigid(std::mt19937_64& random, double reach);

/// A placement of a random kind: rigid, a quarter turn, mirrored, scaled, sheared, flattened, or very far
/// away.
MATRIX RandomPlacement(std::mt19937_64& random, double reach);

}  // namespace tarn::test
