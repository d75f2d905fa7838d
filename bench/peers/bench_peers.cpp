/// The library beside FCL: the same meshes and poses in one process, one thread each.

#include "peers/clearance_twins.h"
#include "peers/interference_twins.h"
#include "peers/placed_assembly.h"
#include "peers/ratio_reporter.h"
#include "support/meshes.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace tarn::bench {
namespace {

/// Everything that is asked of a pair.
void AddPair(const std::string& name, const Lazy<MeshPair>& meshes, unsigned seed) {
    AddInterferencePair(name, meshes, seed);
    AddDistancePair(name, meshes, seed);
}

void AddProceduralScenes() {
    const Lazy<Triangles> knot([] { return std::make_shared<Triangles>(TorusKnot(2500, 24)); });
    AddBuild("torus knot", knot);
    AddPair("torus knot x bumpy ball", Lazy<MeshPair>([knot] {
                return std::make_shared<MeshPair>(MeshPair{*knot, test::BumpyBallMesh(40.0, 174)});
            }),
            5);
    for (const std::size_t count : {1000U, 4000U, 10'000U}) {
        const Lazy<PosedScene> lattice([count] { return MakeLattice(count); });
        const std::string name = "lattice of " + std::to_string(count);
        AddInterferenceScene(name, lattice);
        if (count <= 4000) AddClearanceScene(name, lattice);
    }
}

void AddRealPair(const std::string& name,
                 const char* first_file,
                 const char* second_file,
                 bool splits_second) {
    const Lazy<MeshPair> meshes([=] {
        auto pair = std::make_shared<MeshPair>(
            MeshPair{ReadFused(DataFolder() / first_file), ReadFused(DataFolder() / second_file)});
        Centre(pair->first);
        Centre(pair->second);
        if (splits_second) pair->second = SplitInFour(pair->second);
        return pair;
    });
    AddBuild(name, Lazy<Triangles>([meshes] { return std::make_shared<Triangles>(meshes->second); }));
    AddPair(name, meshes, 6);
}

void AddRealScenes() {
    AddRealPair("room x robot", "fcl/env.obj", "fcl/rob.obj", false);
    AddRealPair("tray x pulley", "parts/fw_mainboard_tray.stl", "parts/odri_pulley_t30_output.STL", false);
    AddRealPair("counter x fork", "parts/counter.unitsmm.STL", "parts/odri_lower_leg_fork.STL", true);
    for (const char* file : {"so101_arm/so101_arm.glb", "assemblies/cycloidal_drive.glb",
                             "open_duck_bdx/open_duck_bdx.glb", "bim/duplex_apartment.glb"}) {
        const Lazy<PosedScene> assembly([file] { return MoveAsOne(ReadAssembly(DataFolder() / file)); });
        const std::string name = std::filesystem::path(file).stem().string();
        AddInterferenceScene(name, assembly);
        AddClearanceScene(name, assembly);
    }
}

}  // namespace
}  // namespace tarn::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    tarn::bench::AddProceduralScenes();
    if (std::filesystem::is_directory(tarn::bench::DataFolder())) {
        tarn::bench::AddRealScenes();
    } else {
        std::fprintf(stderr, "skipped: no folder of real meshes at %s\n", tarn::bench::DataFolder().c_str());
    }
    tarn::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
