#pragma once

#include "peers/twins.h"

#include <string>

namespace tarn::bench {

/// The distance of a moved pair, in poses some way apart: without a clearance, and with one of a hundredth of
/// the longer of the two diagonals.
void AddDistancePair(const std::string& name, const Lazy<MeshPair>& meshes, unsigned seed);

/// All couples of a scene that come within a clearance: a thousandth and a hundredth of its diagonal.
void AddClearanceScene(const std::string& name, const Lazy<PosedScene>& scene);

}  // namespace tarn::bench
