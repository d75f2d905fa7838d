#include "readers/obj_reader.h"
#include "readers/program_error.h"
#include "require_model.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tarn::program;
    try {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes are bytes
        const std::string_view bytes(reinterpret_cast<const char*>(data), size);
        RequireModel(ReadObj(bytes, 25.4));
    } catch (const FormatError&) {  // the one error that a reader may meet
    }
    return 0;
}
