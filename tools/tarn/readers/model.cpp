#include "readers/model.h"

#include "readers/program_error.h"

#include <fmt/format.h>

#include <iterator>
#include <unordered_map>
#include <utility>

namespace tarn::program {

void RefuseTooManyTriangles(const Model& model, const std::string& source) {
    std::uint64_t count = 0;
    for (const Part& part : model.parts) {
        for (const std::size_t mesh : part.meshes) count += model.meshes[mesh].triangles.size();
    }
    if (count <= kMostPlacedTriangles) return;
    throw ProgramError(
        fmt::format("{}: {} parts have {} triangles together, more than the {} that are checked", source,
                    model.parts.size(), count, kMostPlacedTriangles));
}

Model SinglePartModel(Mesh mesh) {
    Model model;
    model.meshes.push_back(std::move(mesh));
    model.parts.push_back({{}, 0, {0}, {}, true});
    model.owners.emplace_back();
    return model;
}

void NameAlone(Model& model, const std::string& file) {
    for (Part& part : model.parts) {
        if (part.is_whole_file) part.name = file;
    }
    for (std::string& owner : model.owners) {
        if (owner.empty()) owner = file;
    }
}

void NameBesideOthers(Model& model, const std::string& file) {
    for (Part& part : model.parts) {
        part.name = part.is_whole_file ? file : file + "/" + part.name;
        part.owner = 0;
    }
    model.owners = {file};
}

void Append(Model& model, Model&& other) {
    const std::size_t mesh_count = model.meshes.size();
    const std::size_t owner_count = model.owners.size();
    for (Part& part : other.parts) {
        for (std::size_t& mesh : part.meshes) mesh += mesh_count;
        part.owner += owner_count;
    }
    const auto move_all = [](auto& from, auto& to) {
        to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
    };
    move_all(other.meshes, model.meshes);
    move_all(other.parts, model.parts);
    move_all(other.owners, model.owners);
    move_all(other.warnings, model.warnings);
    RefuseTooManyTriangles(model, "all files together");
}

void MakeUnique(const std::vector<std::string*>& names) {
    std::unordered_map<std::string, int> last_numbers;  // of each name in use, the highest number behind it
    for (std::string* const name : names) {
        const std::string given = *name;
        int& last_number = last_numbers.try_emplace(given, 0).first->second;
        while (++last_number > 1) {
            *name = fmt::format("{} ({})", given, last_number);
            if (last_numbers.try_emplace(*name, 1).second) break;
        }
    }
}

}  // namespace tarn::program
