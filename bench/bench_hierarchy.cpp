/// Building the hierarchy of one body, by triangles and threads.

#include "core/collision_body.h"
#include "core/collision_element.h"
#include "digest.h"
#include "memory_meter.h"
#include "support/meshes.h"

#include "tarn/thread_limit.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <utility>

namespace tarn::bench {
namespace {

constexpr std::int16_t kLeafNumber = 5;

test::Mesh MeshOf(int kind, std::size_t count) {
    if (kind == 0) {
        // A ball of n rings has 4 n (n - 1) triangles.
        return test::BumpyBallMesh(
            50.0, static_cast<int>(std::lround(std::sqrt(static_cast<double>(count) / 4.0))));
    }
    std::mt19937_64 random(1);
    return test::TriangleSoup(random, count, 500.0, 3.0);
}

void BuildHierarchy(benchmark::State& state) {
    const auto threads = static_cast<std::size_t>(state.range(2));
    details::CollisionElement element(
        "mesh", MeshOf(static_cast<int>(state.range(0)), static_cast<std::size_t>(state.range(1))));
    Digest digest;
    std::size_t kept_bytes = 0;
    for (auto _ : state) {
        details::CollisionBody body(1, "body");
        body.AddElement(&element);
        const std::size_t before = LiveBytes();
        RunWithThreadLimit(threads, [&] { body.SetLeafNumber(kLeafNumber); });
        kept_bytes = LiveBytes() - before;
        state.PauseTiming();
        digest = {};
        for (const auto& node : body.Hierarchy()->Nodes()) {
            digest.Add(node.LocalTriangles().size());
            for (const auto& triangle : node.LocalTriangles()) digest.Add(triangle);
        }
        state.ResumeTiming();
    }
    const auto triangles = static_cast<double>(element.GetTrianglesCount());
    state.counters["per_triangle"] = benchmark::Counter(
        triangles, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["bytes_per_triangle"] = static_cast<double>(kept_bytes) / triangles;
    state.SetLabel((state.range(0) == 0 ? "ball  digest " : "soup  digest ") + digest.Text());
}

BENCHMARK(BuildHierarchy)
    ->ArgNames({"soup", "triangles", "threads"})
    ->ArgsProduct({{0, 1}, {100'000, 1'000'000}, {1, 2}})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

}  // namespace
}  // namespace tarn::bench
