#pragma once

#include "peers/pair_scene.h"

#include "tarn/matrix.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tarn::bench {

/// An assembly as both sides get it: meshes, and bodies that place them. Millimetres.
struct PlacedAssembly {
    struct Body {
        std::string name;
        std::size_t mesh;
        MATRIX placement;
    };

    std::vector<Triangles> meshes;
    std::vector<Body> bodies;
};

/// Reads a mesh or assembly file as the program does. Throws as the program's readers do.
PlacedAssembly ReadAssembly(const std::filesystem::path& path);

/// All triangles of a file in one list, in world coordinates.
Triangles ReadFused(const std::filesystem::path& path);

/// The folder of real meshes, from the environment variable TARN_DATA or as the build says.
std::filesystem::path DataFolder();

}  // namespace tarn::bench
