#pragma once

#include "tarn/triangle_data.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::program {

using Triangles = std::vector<tarn::TriangleData>;

/// Exact as IEEE singles, so that text and binary give the same doubles.
inline Triangles SampleTriangles() {
    return {{0, 0, 0, 1.5, 0, 0, 0, -2.25, 0.125}, {1024, -3, 0.5, 7, 8, 9, -10, 11, 12.75}};
}

inline std::array<double, 9> Coordinates(const tarn::TriangleData& triangle) {
    return std::bit_cast<std::array<double, 9>>(triangle);
}

template <typename Value>
void AppendRaw(std::string& bytes, const Value& value) {
    const auto raw = std::bit_cast<std::array<char, sizeof value>>(value);
    bytes.append(raw.data(), raw.size());
}

inline bool AreSame(const Triangles& first, const Triangles& second) {
    return std::ranges::equal(first, second, {}, Coordinates, Coordinates);
}

inline std::string TextStl(const Triangles& triangles) {
    std::ostringstream text;
    text.precision(17);
    text << "solid part\n";
    for (const tarn::TriangleData& triangle : triangles) {
        const auto c = Coordinates(triangle);
        text << "  facet normal 0 0 1\n    outer loop\n";
        for (std::size_t at = 0; at < 9; at += 3) {
            text << "      vertex " << c[at] << ' ' << c[at + 1] << ' ' << c[at + 2] << '\n';
        }
        text << "    endloop\n  endfacet\n";
    }
    text << "endsolid part\n";
    return text.str();
}

/// `count` is what the header promises; the machine of the tests is little-endian, as the format.
inline std::string BinaryStl(const Triangles& triangles,
                             std::uint32_t count,
                             std::string_view header = "part") {
    static_assert(std::endian::native == std::endian::little);
    std::string bytes(header);
    bytes.resize(80, ' ');
    AppendRaw(bytes, count);
    for (const tarn::TriangleData& triangle : triangles) {
        AppendRaw(bytes, std::array<float, 3>{0, 0, 1});
        for (const double coordinate : Coordinates(triangle))
            AppendRaw(bytes, static_cast<float>(coordinate));
        AppendRaw(bytes, std::uint16_t{0xabcd});
    }
    return bytes;
}

inline std::string BinaryStl(const Triangles& triangles) {
    return BinaryStl(triangles, static_cast<std::uint32_t>(triangles.size()));
}

inline std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

}  // namespace tarn::program
