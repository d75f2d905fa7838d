#include "readers/gltf_reader.h"

#include "error_of.h"
#include "gltf_samples.h"
#include "readers/program_error.h"
#include "stl_samples.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tarn::program {
namespace {

std::string NoNeighbour(const std::string& path) {
    throw FormatError("asked for '" + path + "'");
}

/// Reads from an allocation of exactly this size, so that a sanitizer sees any read beyond.
Model Read(std::string_view bytes, const LoadNeighbour& load_neighbour = NoNeighbour) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    return ReadGltf({exact.data(), exact.size()}, load_neighbour);
}

std::string ErrorOf(std::string_view bytes) {
    return program::ErrorOf([bytes] { Read(bytes); });
}

/// The sample with one value changed, or erased where it is null.
Json Changed(std::string_view pointer, const Json& value) {
    const Json::json_pointer at{std::string(pointer)};
    Json gltf = SampleGltf();
    gltf[at] = value;
    if (value.is_null()) gltf = gltf.patch({{{"op", "remove"}, {"path", pointer}}});
    return gltf;
}

std::vector<std::string> NamesOf(const Model& model) {
    std::vector<std::string> names;
    for (const Part& part : model.parts) names.push_back(part.name);
    return names;
}

TEST(GltfReader, PartsStandUnderAllMatricesAboveThemAndShareTheirMesh) {
    const Model model = Read(Glb(SampleGltf(), SampleBuffer()));
    EXPECT_EQ(NamesOf(model), (std::vector<std::string>{"robot/arm/bolt", "robot/leg"}));
    ASSERT_EQ(model.meshes.size(), 1U);
    EXPECT_TRUE(AreSame(model.meshes[0].triangles, SampleGltfTriangles()));
    // The arm turns half around z, so the bolt's 0.5 to the right is 0.5 to the left of the robot's 10.
    const std::vector<std::array<double, 12>> placements = {
        {-1, 0, 0, 9500, 0, -2, 0, 20000, 0, 0, 4, 30000}, {-1, 0, 0, 15000, 0, 1, 0, 26000, 0, 0, 1, 37000}};
    for (std::size_t part = 0; part < 2; ++part) {
        EXPECT_EQ(model.parts[part].meshes, std::vector<std::size_t>{0});
        for (std::size_t index = 0; index < 12; ++index) {
            EXPECT_EQ(model.parts[part].placement[index], placements[part][index]) << part << ' ' << index;
        }
    }
    const Json quarter = Changed("/nodes/1/rotation", {0, 0.7071, 0, 0.7071});  // of length 0.99999
    const tarn::MATRIX turned = Read(Glb(quarter, SampleBuffer())).parts[0].placement;
    EXPECT_NEAR(turned[2], 4, 1e-12);  // z goes to x
    EXPECT_NEAR(turned[8], -1, 1e-12);
}

TEST(GltfReader, EveryShapeGivesTheSameTriangles) {
    const std::string buffer = SampleBuffer();
    std::vector<std::string> files = {Glb(SampleGltf(), buffer), TextGltf(SampleGltf(), buffer),
                                      "\xEF\xBB\xBF" + TextGltf(SampleGltf(), buffer),
                                      Glb(SampleGltf(), buffer) + "behind the end"};
    const auto add = [&files](const Json& changes, const std::string& bytes) {
        Json gltf = SampleGltf();
        gltf.merge_patch(changes);
        gltf["buffers"][0]["byteLength"] = bytes.size();
        files.push_back(Glb(gltf, bytes));
    };
    const std::string positions = buffer.substr(0, 48);
    for (const auto& [type, size] : {std::pair(5121, std::size_t{1}), {5125, 4}}) {
        std::string bytes = positions;
        for (const int index : {0, 1, 2, 2, 1, 3})
            bytes += std::string(1, static_cast<char>(index)).append(size - 1, 0);
        Json gltf = SampleGltf();
        gltf["accessors"][1]["componentType"] = type;
        gltf["bufferViews"][1]["byteLength"] = 6 * size;
        add(gltf, bytes);
    }
    Json strip = SampleGltf();
    strip["meshes"][0]["primitives"][0] = {{"attributes", {{"POSITION", 0}}}, {"mode", 5}};
    Json spread = SampleGltf();
    spread["bufferViews"][0] = {{"buffer", 0}, {"byteLength", 78}, {"byteStride", 20}};
    spread["bufferViews"][1]["byteOffset"] = 80;
    spread["accessors"][0]["byteOffset"] = 4;
    std::string spread_bytes;
    for (std::size_t at = 0; at < 48; at += 12) spread_bytes += "ahea" + positions.substr(at, 12) + "behi";
    add(spread, spread_bytes + buffer.substr(48));
    for (std::size_t index = 0; index < files.size(); ++index) {
        EXPECT_TRUE(AreSame(Read(files[index]).meshes[0].triangles, SampleGltfTriangles()))
            << "shape " << index;
    }
    // The second triangle of a strip is turned, so that it looks the same way as the first.
    EXPECT_TRUE(AreSame(Read(Glb(strip, buffer)).meshes[0].triangles,
                        {{0, 0, 0, 1500, 0, 0, 0, 2000, 0}, {1500, 0, 0, 1000, 1000, -250, 0, 2000, 0}}));
    strip["meshes"][0]["primitives"][0]["mode"] = 6;
    EXPECT_TRUE(AreSame(Read(Glb(strip, buffer)).meshes[0].triangles,
                        {{1500, 0, 0, 0, 2000, 0, 0, 0, 0}, {0, 2000, 0, 1000, 1000, -250, 0, 0, 0}}));
}

TEST(GltfReader, TheDefaultSceneCountsElseTheFirstElseAllRoots) {
    const auto names = [](const Json& gltf) { return NamesOf(Read(Glb(gltf, SampleBuffer()))); };
    const std::vector<std::string> all = {"robot/arm/bolt", "robot/leg"};
    Json gltf = Changed("/scenes/1", {{"nodes", {3}}});
    EXPECT_EQ(names(gltf), all);
    gltf["scene"] = 1;
    EXPECT_EQ(names(gltf), std::vector<std::string>{"bolt"});
    gltf.erase("scene");
    EXPECT_EQ(names(gltf), all);
    gltf.erase("scenes");
    EXPECT_EQ(names(gltf), all);
    gltf["nodes"][1].erase("name");
    EXPECT_EQ(names(gltf)[0], "robot/node 1/bolt");
}

TEST(GltfReader, WhatMakesNoTrianglesIsPassedOverWithAWarning) {
    Json gltf = Changed("/meshes/0/primitives/1", {{"attributes", {{"POSITION", 0}}}, {"mode", 1}});
    gltf["meshes"][1] = {{"primitives", {{{"attributes", Json::object()}}}}};
    gltf["nodes"][0]["mesh"] = 1;
    gltf["nodes"][3]["skin"] = 0;
    gltf["images"] = "broken, and nobody's business";
    gltf["extensionsRequired"] = {"KHR_materials_unlit"};
    const Model model = Read(Glb(gltf, SampleBuffer()));
    EXPECT_EQ(model.parts.size(), 2U);
    ASSERT_EQ(model.warnings.size(), 2U);
    EXPECT_TRUE(model.warnings[0].starts_with("2 primitives without triangles")) << model.warnings[0];
    EXPECT_TRUE(model.warnings[1].starts_with("skins are not applied: 1 nodes")) << model.warnings[1];
}

TEST(GltfReader, ContradictionsAreRefusedWithTheirPlace) {
    const std::uint64_t huge = 18446744073709551615U;
    const std::vector<std::tuple<std::string, Json, std::string>> cases = {
        {"/asset", nullptr, "has no asset, so it is no glTF"},
        {"/asset/version", "1.0", "is glTF of version 1.0, only 2 is read"},
        {"/asset/version", 2, "asset.version is not a text"},
        {"/extensionsRequired",
         {"KHR_draco_mesh_compression"},
         "needs the extension 'KHR_draco_mesh_compression', which is not read"},
        {"/extensionsUsed", {"EXT_mesh_gpu_instancing"}, "needs the extension 'EXT_mesh_gpu_instancing'"},
        {"/scene", 1, "scenes[1] does not exist"},
        {"/scenes/0/nodes", {4}, "node 4 does not exist, there are 4"},
        {"/scenes/0/nodes", Json::array(), "holds no triangles"},
        {"/nodes/3/children", {0}, "node 0 'robot' is reached twice"},
        {"/nodes/2/children", {3}, "node 3 'bolt' is reached twice"},
        {"/nodes/3/children", {3}, "node 3 'bolt' is reached twice"},
        {"/nodes/3/mesh", 1, "node 3 'bolt': carries meshes[1], which does not exist"},
        {"/nodes/3/mesh", "0", "nodes[3].mesh is not an index"},
        {"/nodes/3/mesh", -1, "nodes[3].mesh is not an index"},
        {"/nodes/3/mesh", 0.5, "nodes[3].mesh is not an index"},
        {"/nodes/3/mesh", 4294967296U, "nodes[3].mesh is not an index"},
        {"/nodes/3/matrix", {1, 2}, "nodes[3].matrix is not a list of 16 numbers"},
        {"/nodes/2/scale", {1, 1, 1}, "nodes[2] has a matrix and also its parts"},
        {"/nodes/2/matrix/15", 2, "node 2 'leg': has a matrix whose last row is not 0 0 0 1"},
        {"/nodes/1/rotation/2", 1.01, "node 1 'arm': has a rotation of length 1.01, which must be 1"},
        {"/nodes/3/scale", {1e300, 1, 1}, ""},
        {"/nodes/0/scale", {1e308, 1e308, 1e308}, "node 1 'arm' has a placement that is not finite"},
        {"/meshes/0/primitives/0/attributes", nullptr, "meshes[0].primitives[0] has no attributes"},
        {"/meshes/0/primitives/0/mode", 7, "primitives[0]: mode 7 does not exist"},
        {"/meshes/0/primitives/0/indices", 2, "primitive indices accessor out of bounds"},
        {"/meshes/0/primitives/0/indices", 0, "accessors[0]: does not hold indices as unsigned integers"},
        {"/accessors/0/componentType", 5123, "accessors[0]: does not hold positions as three singles"},
        {"/accessors/0/type", "VEC4", "accessors[0]: does not hold positions as three singles"},
        {"/accessors/0/count", 5, "accessors[0]: ends behind its buffer view"},
        {"/accessors/0/count", huge, "accessors[0]: ends behind its buffer view"},
        {"/accessors/0/byteOffset", 4, "accessors[0]: ends behind its buffer view"},
        {"/accessors/0/byteOffset", huge, "accessors[0]: ends behind its buffer view"},
        {"/accessors/0/sparse", {{"count", 1}}, "accessors[0]: is sparse, which is not read"},
        {"/accessors/1/count", 5, "5 corners make no whole number of triangles"},
        {"/accessors/0/count", 3, "index 5 names vertex 3, there are 3"},
        {"/bufferViews/0/byteStride", 8, "accessors[0]: has elements that overlap"},
        {"/bufferViews/0/buffer", 1, "buffers[1] does not exist"},
        {"/bufferViews/1/byteOffset", 49, "bufferViews[1] ends behind its buffer"},
        {"/bufferViews/1/byteOffset", huge, "bufferViews[1] ends behind its buffer"},
        {"/bufferViews/1/byteLength", huge, "bufferViews[1] ends behind its buffer"},
        {"/buffers/0/byteLength", 61, "buffers[0]: 61 bytes are promised, there are 60"},
        {"/buffers/0/uri", "more.bin", "buffers[0]: asked for 'more.bin'"},
        {"/buffers/0/uri", "a%20b%2", "buffers[0]: asked for 'a b%2'"},
        {"/buffers/0/uri", "data:application/octet-stream,abc", "buffers[0]: its data cannot be decoded"},
        {"/buffers/0/uri", "data:;base64", "buffers[0]: its data cannot be decoded"},
        {"/buffers/0/uri", "data:application/octet-stream;base64,AAAA", "60 bytes are promised, there are 3"},
    };
    for (const auto& [pointer, value, expected] : cases) {
        const std::string error = ErrorOf(Glb(Changed(pointer, value), SampleBuffer()));
        EXPECT_TRUE(expected.empty() ? error.empty() : error.find(expected) != std::string::npos)
            << pointer << " = " << value << ": " << error;
    }
    std::string buffer = SampleBuffer();
    buffer[3 * 12 + 3] = '\x7f';
    buffer[3 * 12 + 2] = '\x80';
    EXPECT_EQ(ErrorOf(Glb(SampleGltf(), buffer)),
              "node 2 'leg': meshes[0] 'part'.primitives[0]: vertex 3 is not finite");
}

TEST(GltfReader, FilesThatMultiplyThemselvesAreRefused) {
    Json deep = SampleGltf();
    for (std::size_t node = 3; node < 400; ++node) deep["nodes"][node] = {{"children", {node + 1}}};
    deep["nodes"][400] = {{"mesh", 0}};
    EXPECT_NE(ErrorOf(Glb(deep, SampleBuffer())).find("lies too deep in the tree"), std::string::npos);
    const Json long_name = Changed("/nodes/0/name", std::string(5000, 'x'));
    EXPECT_NE(ErrorOf(Glb(long_name, SampleBuffer())).find("has a path of more than 4096 bytes"),
              std::string::npos);
    Json wide = SampleGltf();
    for (int node = 0; node < 200'000; ++node) wide["nodes"].push_back(Json::object());
    EXPECT_EQ(ErrorOf(Glb(wide, SampleBuffer())), "") << "in time that grows with their number";
    EXPECT_EQ(ErrorOf(std::string(100000, '[')), "its JSON is nested too deep");
    EXPECT_EQ(ErrorOf(""), "is empty, holds no triangles");

    // Two thousand meshes that all consist of the same three thousand triangles.
    Json repeated = SampleGltf();
    repeated["bufferViews"][1]["byteLength"] = 18000;
    repeated["accessors"][1]["count"] = 9000;
    repeated["buffers"][0]["byteLength"] = 18048;
    repeated["meshes"][0]["primitives"] = Json::array();
    for (int primitive = 0; primitive < 2000; ++primitive) {
        repeated["meshes"][0]["primitives"].push_back({{"attributes", {{"POSITION", 0}}}, {"indices", 1}});
    }
    const std::string error = ErrorOf(Glb(repeated, SampleBuffer().substr(0, 48) + std::string(18000, '\0')));
    EXPECT_NE(error.find("the same data is used for too many triangles"), std::string::npos) << error;
}

TEST(GltfReader, ATruncatedFileIsRefusedAtEveryLength) {
    const std::string glb = Glb(SampleGltf(), SampleBuffer());
    const std::string text = TextGltf(SampleGltf(), SampleBuffer());
    for (const std::string& file : {glb, text}) {
        for (std::size_t size = 0; size < file.size(); ++size)
            EXPECT_NE(ErrorOf(file.substr(0, size)), "") << size;
    }
    // The same with a header that knows the length.
    for (std::size_t size = 12; size < glb.size(); ++size) {
        std::string part = glb.substr(0, size);
        part[8] = static_cast<char>(size & 0xffU);
        part[9] = static_cast<char>(size >> 8U);
        EXPECT_NE(ErrorOf(part), "") << size;
    }
}

TEST(GltfReader, NestingIsCountedOutsideOfTextsAlone) {
    Json deep = Json::array();
    for (int level = 0; level < 96; ++level) deep = Json::array({std::move(deep)});
    Json gltf = Changed("/extras", {{"\\\"[", {deep, deep}}, {"text", std::string(200, '{') + "\\"}});
    EXPECT_EQ(ErrorOf(Glb(gltf, SampleBuffer())), "");
    gltf["extras"]["deeper"] = Json::array({Json::array({deep})});
    EXPECT_EQ(ErrorOf(Glb(gltf, SampleBuffer())), "its JSON is nested too deep");
}

TEST(GltfBuffers, DataInAddressesMayHaveAnyMediaType) {
    const std::string known = "application/octet-stream";
    const std::string text = TextGltf(SampleGltf(), SampleBuffer());
    const auto with_type = [&](const std::string& type) {
        return std::string(text).replace(text.find(known), known.size(), type);
    };
    for (const char* const type : {"", "model/x-buffer", "text/plain;charset=utf-8"})
        EXPECT_EQ(ErrorOf(with_type(type)), "") << type;
}

TEST(GltfBuffers, FilesAreReadBelowTheFolderAlone) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "scene/deep");
    folder.Write("outside.bin", "outside");
    folder.Write("scene/deep/inside.bin", "inside");
    std::filesystem::create_symlink("../outside.bin", folder / "scene/link.bin");
    const std::string scene = (folder / "scene").string();
    EXPECT_EQ(LoadBelow(scene, "deep/inside.bin"), "inside");
    EXPECT_EQ(LoadBelow(scene, "./deep/inside.bin"), "inside");
    const std::string outside = "is not a path below the file's folder";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"../outside.bin", outside},
        {"deep/../../outside.bin", outside},
        {folder.Path("outside.bin"), outside},
        {"file:outside.bin", outside},
        {"\\\\server\\file", outside},
        {std::string("deep\0x", 6), outside},
        {"link.bin", "is a link out of the file's folder"},
        {"deep", "is not a regular file"},
        {"", "is a link out of the file's folder"},
        {"missing.bin", "cannot be opened (No such file"},
    };
    for (const auto& [path, expected] : cases) {
        const std::string error = program::ErrorOf([&, name = path] { LoadBelow(scene, name); });
        EXPECT_NE(error.find(expected), std::string::npos) << path << ": " << error;
    }
}

}  // namespace
}  // namespace tarn::program
