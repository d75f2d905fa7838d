#include "mesh_file.h"

#include "file_content.h"
#include "program_error.h"
#include "stl_reader.h"

#include <utility>

namespace tarn::program {

MeshFile ReadMeshFile(const std::string& path, LengthUnit unit) {
    const std::string bytes = ReadWholeFile(path);
    try {
        StlContent content = ReadStl(bytes, MillimetresPer(unit));
        return {{path, std::move(content.triangles)}, std::move(content.warnings)};
    } catch (const FormatError& error) {
        throw ProgramError(path + ": " + error.what());
    }
}

}  // namespace tarn::program
