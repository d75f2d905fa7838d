#pragma once

#include "readers/mesh.h"

#include "tarn/matrix.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::program {

/// One placed part: what becomes one body.
struct Part {
    std::string name;                 ///< as read: the path of nodes, empty for `is_whole_file`
    std::size_t owner = 0;            ///< index among the model's owners
    std::vector<std::size_t> meshes;  ///< indices of the model's meshes, at least one
    tarn::MATRIX placement;           ///< local to world, all finite; its translation in millimetres
    bool is_whole_file = false;       ///< whether nothing inside the file gave the part its name
};

/// What a file describes, or several files together.
struct Model {
    std::vector<Mesh> meshes;
    std::vector<Part> parts;
    std::vector<std::string> owners;  ///< names by which parts are grouped; empty where the file is the owner
    std::vector<std::string> warnings;  ///< what was odd and yet accepted, one sentence each
};

/// Triangles that the parts of a model may have together, each mesh counted as often as it is placed. The
/// engine keeps something for each of them, so a small file that places one mesh very often could ask for any
/// amount of memory.
inline constexpr std::uint64_t kMostPlacedTriangles = 200'000'000;

/// Throws `ProgramError`, which begins with `source`, for a model whose parts have more triangles than
/// `kMostPlacedTriangles` together.
void RefuseTooManyTriangles(const Model& model, const std::string& source);

/// A model of one part that is the whole file.
Model SinglePartModel(Mesh mesh);

/// Gives the parts and owners of a file that is checked alone their final names: the path where there is one,
/// else the file's name.
void NameAlone(Model& model, const std::string& file);

/// The same for a file that is checked beside others: names begin with the file's, which is the one owner.
void NameBesideOthers(Model& model, const std::string& file);

/// Adds the meshes, parts and owners of another model. Throws as `RefuseTooManyTriangles` does, for both
/// together.
void Append(Model& model, Model&& other);

/// Gives names that occur more than once a number from the second on, " (2)" and so on, so that every name is
/// unique.
void MakeUnique(const std::vector<std::string*>& names);

}  // namespace tarn::program
