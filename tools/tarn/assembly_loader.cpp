#include "assembly_loader.h"

#include "readers/model_file.h"
#include "readers/program_error.h"
#include "run_steps.h"

#include <fmt/format.h>

#include <cstddef>
#include <utility>

namespace tarn::program {

void AssemblyLoader::Load(LengthUnit unit) {
    summary_.loading_seconds = SecondsOf([&] { ReadFiles(unit); });
}

void AssemblyLoader::Build(Placements placements) {
    summary_.building_seconds = SecondsOf([&] { BuildBodies(placements); });
}

void AssemblyLoader::ChooseCouples(CoupleCheck& check, const CoupleChoice& choice) {
    for (const std::string& warning : check.ChooseCouples(assembly_, model_, choice))
        console_.Warn("--ignore", warning);
    summary_.couple_count = check.CountCouples();
}

void AssemblyLoader::ReadFiles(LengthUnit unit) {
    std::size_t number = 0;
    for (const std::string& path : files_) {
        console_.ShowStatus(fmt::format("loading {} of {}", ++number, files_.size()));
        Model file = ReadModelFile(path, unit);
        for (const std::string& warning : file.warnings) console_.Warn(path, warning);
        if (files_.size() == 1) {
            NameAlone(file, path);
            model_ = std::move(file);
        } else {
            NameBesideOthers(file, path);
            Append(model_, std::move(file));
        }
    }
    std::vector<std::string*> names;
    for (Part& part : model_.parts) names.push_back(&part.name);
    MakeUnique(names);
    names.clear();
    for (std::string& owner : model_.owners) names.push_back(&owner);
    MakeUnique(names);
}

void AssemblyLoader::BuildBodies(Placements placements) {
    for (const Mesh& mesh : model_.meshes) assembly_.AddMesh(mesh);
    SizeWarnings warnings;
    for (const Part& part : model_.parts) {
        console_.ShowStatus(
            fmt::format("building {} of {}", assembly_.body_count() + 1, model_.parts.size()));
        const std::uint64_t kept_count =
            placements == Placements::Baked ? assembly_.AddBakedPart(part) : assembly_.AddPart(part);
        const std::uint64_t dropped_count = Look(warnings, part, kept_count) - kept_count;
        triangle_counts_.push_back({kept_count, dropped_count});
        summary_.kept_triangle_count += kept_count;
        *summary_.dropped_triangle_count += dropped_count;
    }
    for (const auto& [part, warning] : warnings.Summed()) console_.Warn(part, warning);
    model_.meshes = {};  // the engine has its own copies; large assemblies need the memory
    summary_.body_count = assembly_.body_count();
}

/// The name of a part of several files begins with its file's, that of a single file's part does not.
std::uint64_t AssemblyLoader::Look(SizeWarnings& warnings, const Part& part, std::uint64_t kept_count) const {
    try {
        return warnings.Look(part, model_.meshes, kept_count);
    } catch (const FormatError& error) {
        const bool is_named = files_.size() > 1 || part.name == files_.front();
        throw ProgramError(is_named ? error.what() : files_.front() + ": " + error.what());
    }
}

}  // namespace tarn::program
