#include "readers/stl_reader.h"

#include "readers/program_error.h"
#include "readers/stl_binary.h"
#include "readers/stl_text.h"

namespace tarn::program {

StlContent ReadStl(std::string_view bytes, double millimetres_per_unit) {
    StlContent content;
    if (!HasExactBinaryStlSize(bytes) && LooksLikeTextStl(bytes)) {
        content.triangles = ReadTextStl(bytes, millimetres_per_unit);
    } else {
        content = ReadBinaryStl(bytes, millimetres_per_unit);
    }
    if (content.triangles.empty()) throw FormatError("holds no triangles");
    return content;
}

}  // namespace tarn::program
