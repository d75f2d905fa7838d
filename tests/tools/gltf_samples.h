#pragma once

#include "stl_samples.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::program {

using Json = nlohmann::json;

/// The buffer of the sample: four vertices of three singles, then two triangles of 16-bit indices.
inline std::string SampleBuffer() {
    std::string bytes;
    for (const float coordinate : {0.F, 0.F, 0.F, 1.5F, 0.F, 0.F, 0.F, 2.F, 0.F, 1.F, 1.F, -0.25F}) {
        AppendRaw(bytes, coordinate);
    }
    for (const int index : {0, 1, 2, 2, 1, 3}) AppendRaw(bytes, static_cast<std::uint16_t>(index));
    return bytes;
}

/// Those triangles in millimetres.
inline Triangles SampleGltfTriangles() {
    return {{0, 0, 0, 1500, 0, 0, 0, 2000, 0}, {0, 2000, 0, 1500, 0, 0, 1000, 1000, -250}};
}

/// A tree in which two nodes share a mesh: "robot" above "arm", which holds "bolt", and above "leg".
inline Json SampleGltf() {
    Json gltf = Json::parse(R"({
        "asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": [{"name": "robot", "children": [1, 2], "translation": [10, 20, 30]},
                  {"name": "arm", "children": [3], "rotation": [0, 0, 1, 0], "scale": [1, 2, 4]},
                  {"name": "leg", "mesh": 0, "matrix": [-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1]},
                  {"name": "bolt", "mesh": 0, "translation": [0.5, 0, 0]}],
        "meshes": [{"name": "part", "primitives": [{"attributes": {"POSITION": 0}, "indices": 1}]}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 4, "type": "VEC3"},
                      {"bufferView": 1, "componentType": 5123, "count": 6, "type": "SCALAR"}],
        "bufferViews": [{"buffer": 0, "byteLength": 48}, {"buffer": 0, "byteOffset": 48, "byteLength": 12}],
        "buffers": [{"byteLength": 60}]})");
    return gltf;
}

/// A GLB file; chunks are filled up to whole words, as the format asks.
inline std::string Glb(const Json& gltf, std::string binary) {
    std::string text = gltf.dump();
    text.resize((text.size() + 3) / 4 * 4, ' ');
    binary.resize((binary.size() + 3) / 4 * 4, '\0');
    const auto size = [](std::size_t value) { return static_cast<std::uint32_t>(value); };
    std::string bytes = "glTF";
    AppendRaw(bytes, std::uint32_t{2});
    AppendRaw(bytes, size(28 + text.size() + binary.size()));
    AppendRaw(bytes, size(text.size()));
    bytes += "JSON" + text;
    AppendRaw(bytes, size(binary.size()));
    bytes += std::string("BIN\0", 4) + binary;
    return bytes;
}

/// The bytes as an address that holds them.
inline std::string DataUri(std::string_view bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text = "data:application/octet-stream;base64,";
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t word = 0;
        for (std::size_t index = at; index < at + 3; ++index) {
            word = word << 8U | (index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U);
        }
        for (std::size_t digit = 0; digit < 4; ++digit) {
            text += at + digit > bytes.size() ? '=' : kDigits[word >> (18 - 6 * digit) & 63U];
        }
    }
    return text;
}

/// A text file that holds its own buffer.
inline std::string TextGltf(Json gltf, std::string_view buffer) {
    gltf["buffers"][0]["uri"] = DataUri(buffer);
    return gltf.dump();
}

}  // namespace tarn::program
