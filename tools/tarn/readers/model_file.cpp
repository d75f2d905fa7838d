#include "readers/model_file.h"

#include "readers/file_content.h"
#include "readers/gltf_container.h"
#include "readers/gltf_reader.h"
#include "readers/obj_reader.h"
#include "readers/printable_text.h"
#include "readers/program_error.h"
#include "readers/stl_reader.h"
#include "readers/text_characters.h"

#ifdef TARN_WITH_ASSIMP
#include "readers/assimp_reader.h"
#endif

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <new>
#include <utility>

namespace tarn::program {
namespace {

/// In lower case, with its dot.
std::string EndingOf(const std::string& path) {
    std::string ending = std::filesystem::path(path).extension().string();
    std::ranges::transform(ending, ending.begin(), InLowerCase);
    return ending;
}

Model ReadStlModel(const std::string& bytes, double millimetres_per_unit) {
    StlContent content = ReadStl(bytes, millimetres_per_unit);
    Model model = SinglePartModel({{}, std::move(content.triangles)});
    model.warnings = std::move(content.warnings);
    return model;
}

Model ReadGltfModel(const std::string& bytes, const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return ReadGltf(bytes, [&folder](const std::string& neighbour) { return LoadBelow(folder, neighbour); });
}

Model ReadOther([[maybe_unused]] const std::string& path,
                [[maybe_unused]] const std::string& ending,
                [[maybe_unused]] double millimetres_per_unit) {
#ifdef TARN_WITH_ASSIMP
    // Read once to meet what is missing or a folder with our own words; the library opens the file again,
    // because some formats name others beside them.
    if (!ReadWholeFile(path).empty()) {
        // DAE files state their unit, and the library has turned it into metres.
        const bool is_in_metres = ending == ".dae";
        return ReadWithAssimp(path, is_in_metres ? MillimetresPer(LengthUnit::Metre) : millimetres_per_unit);
    }
    throw FormatError("is empty, holds no triangles");
#else
    throw FormatError(
        fmt::format("{} files are read only by builds with assimp (TARN_WITH_ASSIMP=ON); this "
                    "build reads {}",
                    Excerpt(ending), ReadableFormats()));
#endif
}

Model ReadAnyModel(const std::string& path, double millimetres_per_unit) {
    const std::string ending = EndingOf(path);
    if (ending == ".stl") return ReadStlModel(ReadWholeFile(path), millimetres_per_unit);
    if (ending == ".obj") return ReadObj(ReadWholeFile(path), millimetres_per_unit);
    if (ending == ".gltf" || ending == ".glb") return ReadGltfModel(ReadWholeFile(path), path);
    if (!ending.empty()) return ReadOther(path, ending, millimetres_per_unit);
    const std::string bytes = ReadWholeFile(path);
    return LooksLikeGlb(bytes) ? ReadGltfModel(bytes, path) : ReadStlModel(bytes, millimetres_per_unit);
}

}  // namespace

Model ReadModelFile(const std::string& path, LengthUnit unit) {
    try {
        Model model = ReadAnyModel(path, MillimetresPer(unit));
        RefuseTooManyTriangles(model, path);
        return model;
    } catch (const FormatError& error) {
        throw ProgramError(path + ": " + error.what());
    } catch (const std::bad_alloc&) {
        throw ProgramError(path + ": out of memory");
    }
}

std::string ReadableFormats() {
#ifdef TARN_WITH_ASSIMP
    return "STL, OBJ, glTF, GLB and, through assimp, others";
#else
    return "STL, OBJ, glTF and GLB";
#endif
}

}  // namespace tarn::program
