#pragma once

#include "peers/twins.h"

#include <string>

namespace tarn::bench {

/// Builds of a hierarchy.
void AddBuild(const std::string& name, const Lazy<Triangles>& triangles);

/// Yes or no for a moved pair, in poses around the first contact.
void AddInterferencePair(const std::string& name, const Lazy<MeshPair>& meshes, unsigned seed);

/// All couples of a scene that interfere.
void AddInterferenceScene(const std::string& name, const Lazy<PosedScene>& scene);

}  // namespace tarn::bench
