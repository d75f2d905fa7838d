#pragma once

#include "mesh_size_check.h"
#include "readers/mesh.h"
#include "readers/model.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tarn::program {

/// Gathers doubts about the sizes of parts, so that an assembly of hundreds of alike parts gives one line for
/// each kind of doubt.
class SizeWarnings final {
public:
    /// Measures a part and returns how many triangles its meshes have; `kept_count` of them the engine kept.
    /// Throws `FormatError`, naming the part, where the placement takes it beyond what a double holds.
    std::uint64_t Look(const Part& part, const std::vector<Mesh>& meshes, std::uint64_t kept_count);

    /// Of each kind of doubt the first part's name and the warning, which counts the others.
    std::vector<std::pair<std::string, std::string>> Summed() const;

private:
    struct Doubt {
        std::string part;
        std::string warning;
        std::size_t count = 0;
    };

    void Add(Doubt& doubt, const Part& part, std::string warning);

    Doubt invalid_;
    Doubt too_fine_;
    Doubt too_large_;
};

}  // namespace tarn::program
