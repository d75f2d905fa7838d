/// Checks real assemblies and pairs with the library, with FCL and with exact arithmetic, and prints a
/// Markdown table of how many couples each finds. Couples that only the library or only exact arithmetic
/// finds are contacts: behind their number stands how deep they cross or how far they are apart.

#include "core/triangle.h"
#include "detect/collision_detector.h"
#include "peers/exact_check.h"
#include "peers/peer_mesh.h"
#include "peers/placed_assembly.h"
#include "readers/program_error.h"
#include "support/scene.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarn::bench {
namespace {

using Couple = std::pair<std::size_t, std::size_t>;

std::set<Couple> TarnCouples(const PlacedAssembly& assembly) {
    test::Scene scene;
    std::vector<ICollisionElement*> elements;
    for (const Triangles& mesh : assembly.meshes) elements.push_back(scene.AddElement(mesh));
    for (const auto& body : assembly.bodies) scene.AddBody(elements[body.mesh], body.placement);
    scene.Configuration().EnableAllCouples();
    CollisionResult result;
    details::CollisionDetector().Check(result, scene.Configuration(), CheckPolicy::AllInterferences);
    std::set<Couple> couples;
    for (const auto& pair : result.Pairs) couples.emplace(pair.First->GetId() - 1, pair.Second->GetId() - 1);
    return couples;
}

std::set<Couple> PeerCouples(const PlacedAssembly& assembly) {
    std::vector<PeerMesh> meshes;
    for (const Triangles& mesh : assembly.meshes) meshes.emplace_back(mesh);
    PeerScene scene;
    for (const auto& body : assembly.bodies) scene.Add(meshes[body.mesh], body.placement);
    scene.Register();
    std::set<Couple> couples;
    for (const auto& couple : scene.CollidingCouples()) couples.emplace(couple.first, couple.second);
    return couples;
}

struct ExactCouple {
    Couple couple;
    double deepest_crossing;
};

std::vector<ExactMesh> ExactMeshes(const PlacedAssembly& assembly) {
    std::vector<ExactMesh> meshes;
    for (const auto& body : assembly.bodies) {
        Triangles world;
        for (const TriangleData& t : assembly.meshes[body.mesh]) {
            if (details::IsValid(t)) world.push_back(details::Place(body.placement, t));
        }
        meshes.emplace_back(world);
    }
    return meshes;
}

std::vector<ExactCouple> ExactCouples(const std::vector<ExactMesh>& meshes) {
    std::vector<ExactCouple> couples;
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        for (std::size_t j = i + 1; j < meshes.size(); ++j) {
            const ExactAnswer answer = CheckExactly(meshes[i], meshes[j]);
            if (answer.intersects) couples.push_back({{i, j}, answer.deepest_crossing});
        }
    }
    return couples;
}

void Compare(const std::string& name, const PlacedAssembly& assembly) {
    std::size_t triangles = 0;
    for (const auto& body : assembly.bodies) triangles += assembly.meshes[body.mesh].size();
    const std::set<Couple> own = TarnCouples(assembly);
    const std::set<Couple> peer = PeerCouples(assembly);
    const std::vector<ExactMesh> exact_meshes = ExactMeshes(assembly);
    const std::vector<ExactCouple> exact = ExactCouples(exact_meshes);

    std::set<Couple> exact_set;
    double deepest_missed = 0.0;
    std::size_t missed = 0;
    for (const ExactCouple& couple : exact) {
        exact_set.insert(couple.couple);
        if (own.contains(couple.couple)) continue;
        ++missed;
        deepest_missed = std::max(deepest_missed, couple.deepest_crossing);
    }
    std::size_t invented = 0;
    double widest_gap = 0.0;
    for (const Couple& couple : own) {
        if (exact_set.contains(couple)) continue;
        ++invented;
        widest_gap = std::max(widest_gap, VertexGap(exact_meshes[couple.first], exact_meshes[couple.second]));
    }
    std::printf("| %s | %zu | %zu | %zu | %zu | %zu | %zu | %.1e | %zu | %.1e |\n", name.c_str(),
                assembly.bodies.size(), triangles, own.size(), peer.size(), exact.size(), missed,
                deepest_missed, invented, widest_gap);
    std::fflush(stdout);
}

/// Two files as two bodies where they lie.
PlacedAssembly PairOf(const char* first, const char* second) {
    PlacedAssembly pair;
    for (const char* file : {first, second}) {
        pair.bodies.push_back({file, pair.meshes.size(), {}});
        pair.meshes.push_back(ReadFused(DataFolder() / file));
    }
    return pair;
}

void CompareAll() {
    std::printf(
        "| scene | bodies | triangles | tarn | FCL | exact | exact only | deepest crossing of these [mm] | "
        "tarn only | widest gap of these [mm] |\n");
    std::printf("|---|---|---|---|---|---|---|---|---|---|\n");
    for (const char* file :
         {"so101_arm/so101_arm.glb", "assemblies/cycloidal_drive.glb", "open_duck_bdx/open_duck_bdx.glb",
          "bim/duplex_apartment.glb", "ur5/ur5_collision.glb", "ur5/ur5_visual.glb"}) {
        Compare(std::filesystem::path(file).stem().string(), ReadAssembly(DataFolder() / file));
    }
    Compare("room x robot", PairOf("fcl/env.obj", "fcl/rob.obj"));
    try {
        Compare("ball A x ball B", PairOf("parts/ballA.off", "parts/ballB.off"));
    } catch (const program::ProgramError& error) {
        std::fprintf(stderr, "skipped: %s\n", error.what());
    }
    Compare("spot x blub", PairOf("parts/spot.glb", "parts/blub_thickened.glb"));
}

}  // namespace
}  // namespace tarn::bench

int main() {
    try {
        if (!std::filesystem::is_directory(tarn::bench::DataFolder())) {
            std::printf("skipped: no folder of real meshes at %s\n", tarn::bench::DataFolder().c_str());
            return 0;
        }
        tarn::bench::CompareAll();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "compare_assemblies: %s\n", error.what());
        return 1;
    }
    return 0;
}
