#include "readers/model_file.h"

#include "error_of.h"
#include "gltf_samples.h"
#include "program_run.h"
#include "readers/model.h"

#include <gtest/gtest.h>

namespace tarn::program {
namespace {

/// `count` parts that share a mesh of 200,000 triangles.
Model Instances(std::size_t count) {
    Model model = SinglePartModel({{}, std::vector<tarn::TriangleData>(200'000)});
    model.parts.resize(count, model.parts[0]);
    return model;
}

TEST(ModelFile, PlacedTrianglesAreLimited) {
    Model model = Instances(600);
    EXPECT_NO_THROW(Append(model, Instances(400)));
    EXPECT_EQ(ErrorOf<ProgramError>([&] { Append(model, Instances(1)); }),
              "all files together: 1001 parts have 200200000 triangles together, more than the 200000000 "
              "that are checked");
}

TEST(ModelFile, AFileThatPlacesAMeshTooOftenIsNamed) {
    constexpr std::size_t kCount = 200'001;
    Json gltf = SampleGltf();
    gltf["accessors"][1]["count"] = 3 * 1000;
    gltf["bufferViews"][1]["byteLength"] = 6 * 1000;
    gltf["buffers"][0]["byteLength"] = 48 + 6 * 1000;
    gltf["scenes"][0]["nodes"] = {0};
    for (std::size_t node = 4; node < kCount + 2; ++node) {
        gltf["nodes"].push_back({{"mesh", 0}});
        gltf["scenes"][0]["nodes"].push_back(node);
    }
    std::string buffer = SampleBuffer();
    buffer.resize(48 + 6 * 1000, '\0');
    const TemporaryFolder folder;
    const std::string path = folder.Write("often.glb", Glb(gltf, buffer));
    const std::string error = ErrorOf<ProgramError>([&] { ReadModelFile(path, LengthUnit::Millimetre); });
    EXPECT_TRUE(error.starts_with(path + ": 200001 parts have 200001000 triangles")) << error;
}

TEST(ModelFile, AFileThatMemoryDoesNotSufficeForIsNamed) {
#ifdef TARN_IS_SANITIZED
    GTEST_SKIP() << "the sanitizer itself needs more than the limit";
#endif
    const TemporaryFolder folder;
    const std::string path = folder.Write("large.stl", "");
    std::filesystem::resize_file(path, 2'000'000'000);  // it has holes, so it takes no room
    const ProgramRun run = RunTarn({"check", path}, "ulimit -v 1000000; ");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.errors, "tarn: " + path + ": out of memory\n");
}

}  // namespace
}  // namespace tarn::program
