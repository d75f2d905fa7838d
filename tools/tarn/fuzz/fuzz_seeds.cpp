// Writes the fuzzers' seeds, the samples of the tests: fuzz_seeds FOLDER, which gets a folder for each
// fuzzer.
#include "gltf_samples.h"
#include "obj_samples.h"
#include "stl_samples.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace tarn::program {
namespace {

std::vector<std::string> GltfSeeds() {
    Json strip = SampleGltf();
    strip["meshes"][0]["primitives"][0]["mode"] = 5;
    strip["accessors"][0]["byteOffset"] = 0;
    strip["bufferViews"][0]["byteStride"] = 12;
    Json fan = SampleGltf();
    fan["meshes"][0]["primitives"][0] = {{"attributes", {{"POSITION", 0}}}, {"mode", 6}};
    fan.erase("scene");
    return {Glb(SampleGltf(), SampleBuffer()), TextGltf(SampleGltf(), SampleBuffer()),
            Glb(strip, SampleBuffer()), TextGltf(fan, SampleBuffer())};
}

void Write(const std::filesystem::path& folder, const std::vector<std::string>& seeds) {
    std::filesystem::create_directories(folder);
    for (std::size_t index = 0; index < seeds.size(); ++index) {
        std::ofstream stream(folder / ("seed_" + std::to_string(index)), std::ios::binary);
        stream << seeds[index];
    }
}

}  // namespace
}  // namespace tarn::program

int main(int argument_count, char** arguments) {
    using namespace tarn::program;
    if (argument_count != 2) {
        std::fputs("usage: fuzz_seeds FOLDER\n", stderr);
        return 2;
    }
    const std::filesystem::path folder(arguments[1]);
    Write(folder / "fuzz_gltf", GltfSeeds());
    Write(folder / "fuzz_obj", ObjSamples());
    Write(folder / "fuzz_stl", {TextStl(SampleTriangles()), BinaryStl(SampleTriangles())});
    return 0;
}
