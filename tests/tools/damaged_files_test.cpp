#include "error_of.h"
#include "gltf_samples.h"
#include "obj_samples.h"
#include "readers/gltf_reader.h"
#include "readers/obj_reader.h"
#include "readers/stl_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace tarn::program {
namespace {

Triangles TrianglesOf(const Model& model) {
    Triangles all;
    for (const Mesh& mesh : model.meshes) all.insert(all.end(), mesh.triangles.begin(), mesh.triangles.end());
    return all;
}

Triangles StlTriangles(std::string_view bytes) {
    return ReadStl(bytes, 1).triangles;
}
Triangles ObjTriangles(std::string_view bytes) {
    return TrianglesOf(ReadObj(bytes, 1));
}
Triangles GltfTriangles(std::string_view bytes) {
    return TrianglesOf(
        ReadGltf(bytes, [](const std::string&) -> std::string { throw FormatError("alone"); }));
}

/// Whether the bytes are read rather than refused. What is read must be finite triangles.
bool IsRead(std::string_view bytes, Triangles (*read)(std::string_view)) {
    // From an allocation of exactly this size, so that a sanitizer sees any read beyond.
    const std::vector<char> exact(bytes.begin(), bytes.end());
    Triangles triangles;
    const auto try_to_read = [&] { triangles = read({exact.data(), exact.size()}); };
    if (!ErrorOf(try_to_read).empty()) return false;
    EXPECT_FALSE(triangles.empty());
    for (const tarn::TriangleData& triangle : triangles)
        EXPECT_TRUE(std::ranges::all_of(Coordinates(triangle), [](double c) { return std::isfinite(c); }));
    return true;
}

TEST(DamagedFiles, GiveFiniteTrianglesOrAnError) {
    const struct {
        const char* name;
        std::vector<std::string> samples;
        Triangles (*read)(std::string_view);
    } formats[] = {
        {"STL", {TextStl(SampleTriangles()), BinaryStl(SampleTriangles())}, StlTriangles},
        {"OBJ", ObjSamples(), ObjTriangles},
        {"glTF", {Glb(SampleGltf(), SampleBuffer()), TextGltf(SampleGltf(), SampleBuffer())}, GltfTriangles},
    };
    constexpr int kIterations = 10000;
    std::mt19937 random(20240517);
    for (const auto& [name, samples, read] : formats) {
        SCOPED_TRACE(name);
        for (const std::string& sample : samples) {
            for (std::size_t size = 0; size <= sample.size(); ++size)
                EXPECT_TRUE(IsRead(sample.substr(0, size), read) || size < sample.size());
        }
        int read_count = 0;
        for (int iteration = 0; iteration < kIterations; ++iteration) {
            std::string bytes = samples[random() % samples.size()];
            for (auto change = 1 + random() % 3; change-- > 0;)
                bytes[random() % bytes.size()] ^= static_cast<char>(1U << random() % 8);
            read_count += IsRead(bytes, read) ? 1 : 0;
        }
        EXPECT_GT(read_count, kIterations / 50);
        EXPECT_LT(read_count, kIterations);
    }
}

}  // namespace
}  // namespace tarn::program
