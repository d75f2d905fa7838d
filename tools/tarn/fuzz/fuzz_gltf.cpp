#include "readers/gltf_reader.h"
#include "readers/program_error.h"
#include "require_model.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

/// Fuzzing reads no files.
std::string NoNeighbour(const std::string& path) {
    throw tarn::program::FormatError("no file " + path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarn::program;
    try {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes are bytes
        const std::string_view bytes(reinterpret_cast<const char*>(data), size);
        RequireModel(ReadGltf(bytes, NoNeighbour));
    } catch (const FormatError&) {  // the one error that a reader may meet
    }
    return 0;
}
