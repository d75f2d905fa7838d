/// One couple of bodies, the second moved to a new pose before every check, by the plain rules and with
/// filters: the digests are the same.

#include "detect/collision_detector.h"
#include "digest.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/scene.h"

#include "tarn/thread_limit.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace tarn::bench {
namespace {

constexpr std::size_t kPoses = 256;

void MovedPair(benchmark::State& state) {
    const auto rings = static_cast<int>(state.range(1));
    const auto policy = static_cast<CheckPolicy>(state.range(2));
    test::Scene scene;
    // Two bumpy balls of radius 50 about 100 apart: near misses and grazing contacts, as in an assembly.
    scene.AddBody(test::BumpyBallMesh(50.0, rings));
    details::CollisionBody* moved = scene.AddBody(test::BumpyBallMesh(50.0, rings));
    scene.Configuration().EnableAllCouples();
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> distance(100.0, 112.0);
    std::vector<MATRIX> poses;
    for (std::size_t i = 0; i < kPoses; ++i) {
        MATRIX pose = test::RandomRigid(random, 0.0);
        pose[3] = distance(random);
        poses.push_back(pose);
    }

    details::CollisionDetector detector(static_cast<details::Filters>(state.range(0)));
    CollisionResult result;
    std::size_t interfering = 0;
    Digest digest;
    RunWithThreadLimit(1, [&] {
        for (const MATRIX& pose : poses) {
            moved->SetMatrix(pose);
            digest.Add(detector.Check(result, scene.Configuration(), policy));
            interfering += result.Pairs.size();
        }
        std::size_t next = 0;
        for (auto _ : state) {
            moved->SetMatrix(poses[next]);
            benchmark::DoNotOptimize(detector.Check(result, scene.Configuration(), policy));
            next = (next + 1) % kPoses;
        }
    });
    state.counters["triangles"] = static_cast<double>(moved->GetStatistics().triangle_count);
    state.counters["interfering"] = static_cast<double>(interfering) / kPoses;
    state.SetLabel("digest " + digest.Text());
}

BENCHMARK(MovedPair)
    ->ArgNames({"filters", "rings", "policy"})
    ->ArgsProduct({{0, 1},
                   {16, 50, 160},
                   {static_cast<long>(CheckPolicy::AllInterferences),
                    static_cast<long>(CheckPolicy::AllInterferencesWithTriangles)}})
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tarn::bench
