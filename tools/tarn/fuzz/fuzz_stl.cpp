#include "readers/program_error.h"
#include "readers/stl_reader.h"
#include "require_model.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarn::program;
    try {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes are bytes
        const std::string_view bytes(reinterpret_cast<const char*>(data), size);
        RequireFinite(ReadStl(bytes, 25.4).triangles);
    } catch (const FormatError&) {  // the one error that a reader may meet
    }
    return 0;
}
