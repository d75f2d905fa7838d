#include "readers/stl_binary.h"

#include "readers/coordinate.h"
#include "readers/little_endian.h"
#include "readers/program_error.h"

#include <fmt/format.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace tarn::program {
namespace {

constexpr std::size_t kCountOffset = 80;                                     // behind the free-form header
constexpr std::size_t kFacetsOffset = kCountOffset + sizeof(std::uint32_t);  // where the first facet starts
constexpr std::size_t kNormalSize = 3 * sizeof(float);                       // read by nobody
constexpr std::size_t kFacetSize = kNormalSize + 9 * sizeof(float) + sizeof(std::uint16_t);

static_assert(sizeof(float) == 4 && std::numeric_limits<float>::is_iec559,
              "the format's numbers are IEEE singles");

tarn::TriangleData FacetAt(std::string_view bytes, std::size_t offset, double millimetres_per_unit) {
    std::array<double, 9> c{};
    std::size_t position = offset + kNormalSize;
    for (double& coordinate : c) {
        const auto value = static_cast<double>(std::bit_cast<float>(WordAt(bytes, position)));
        coordinate = ConvertCoordinate(value, millimetres_per_unit);
        position += sizeof(float);
    }
    return {c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8]};
}

}  // namespace

bool HasExactBinaryStlSize(std::string_view bytes) {
    if (bytes.size() < kFacetsOffset) return false;
    const std::uint64_t count = WordAt(bytes, kCountOffset);
    return bytes.size() == kFacetsOffset + count * kFacetSize;
}

StlContent ReadBinaryStl(std::string_view bytes, double millimetres_per_unit) {
    if (bytes.empty()) throw FormatError("is empty, holds no triangles");
    if (bytes.size() < kFacetsOffset) throw FormatError("is neither text nor binary STL, holds no triangles");

    const std::size_t count = WordAt(bytes, kCountOffset);
    const std::size_t data_size = bytes.size() - kFacetsOffset;
    const std::size_t room = data_size / kFacetSize;
    if (count > room) {
        throw FormatError(fmt::format("header promises {} facets, the file holds room for {}", count, room));
    }
    if (count == 0 && data_size > 0) {
        throw FormatError(fmt::format("header promises 0 facets, yet {} bytes follow it", data_size));
    }

    StlContent content;
    const std::size_t trailing = data_size - count * kFacetSize;
    if (trailing > 0) {
        content.warnings.push_back(fmt::format(
            "{} bytes behind the {} facets that the header promises were ignored", trailing, count));
    }
    content.triangles.reserve(count);
    for (std::size_t facet = 0; facet < count; ++facet) {
        try {
            content.triangles.push_back(
                FacetAt(bytes, kFacetsOffset + facet * kFacetSize, millimetres_per_unit));
        } catch (const FormatError& error) {
            throw FormatError(fmt::format("facet {}: {}", facet + 1, error.what()));
        }
    }
    return content;
}

}  // namespace tarn::program
