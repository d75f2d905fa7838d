/// All couples of many small bodies: setting them up, the first check, and a check after every body has
/// moved.

#include "detect/collision_detector.h"
#include "digest.h"
#include "memory_meter.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/scene.h"

#include "tarn/thread_limit.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace tarn::bench {
namespace {

/// What a couple may cost at most, for the decision whether the machine can hold a scene.
constexpr std::size_t kBytesPerCouple = 100;

/// Bodies of some 40 to 100 triangles on a lattice, so close that a few neighbours cross.
class Lattice {
public:
    explicit Lattice(std::size_t count) {
        ICollisionElement* shapes[] = {scene_.AddElement(test::BallMesh(1.0, 5)),
                                       scene_.AddElement(test::BoxMesh(-0.8, -0.6, -1.0, 0.8, 0.6, 1.0))};
        for (std::size_t i = 0; i < count; ++i) scene_.AddBody(shapes[i % 2], {});
        edge_ = static_cast<std::size_t>(std::ceil(std::cbrt(static_cast<double>(count))));
        Move();
    }

    /// Gives every body a new pose near its place.
    void Move() {
        for (std::size_t i = 0; i < scene_.Bodies().size(); ++i) {
            MATRIX pose = test::RandomRigid(random_, 0.1);
            pose[3] += kPitch * static_cast<double>(i % edge_);
            pose[7] += kPitch * static_cast<double>(i / edge_ % edge_);
            pose[11] += kPitch * static_cast<double>(i / edge_ / edge_);
            scene_.Bodies()[i]->SetMatrix(pose);
        }
    }

    std::size_t CoupleCount() const { return scene_.Bodies().size() * (scene_.Bodies().size() - 1) / 2; }
    ICollisionConfiguration& Configuration() { return scene_.Configuration(); }

private:
    static constexpr double kPitch = 2.1;

    test::Scene scene_;
    std::size_t edge_ = 0;
    std::mt19937_64 random_{3};
};

bool SkipWhereMemoryIsShort(benchmark::State& state, std::size_t couple_count) {
    const std::size_t needed = couple_count * kBytesPerCouple;
    if (needed < AvailableBytes()) return false;
    state.SkipWithError(("skipped: needs " + std::to_string(needed >> 20) + " MB of memory").c_str());
    return true;
}

void EnableAllCouples(benchmark::State& state) {
    Lattice lattice(static_cast<std::size_t>(state.range(0)));
    if (SkipWhereMemoryIsShort(state, lattice.CoupleCount())) return;
    const std::size_t before = LiveBytes();
    std::size_t kept = 0;
    ResetPeakBytes();
    for (auto _ : state) {
        lattice.Configuration().EnableAllCouples();
        state.PauseTiming();
        kept = LiveBytes() - before;
        lattice.Configuration().ConfigAllCouples(false);
        state.ResumeTiming();
    }
    const auto couples = static_cast<double>(lattice.CoupleCount());
    state.counters["couples"] = couples;
    state.counters["bytes_per_couple"] = static_cast<double>(kept) / couples;
    state.counters["peak_bytes_per_couple"] = static_cast<double>(PeakBytes() - before) / couples;
}

CollisionResult CheckAll(Lattice& lattice, std::size_t threads) {
    CollisionResult result;
    RunWithThreadLimit(threads, [&] {
        details::CollisionDetector().Check(result, lattice.Configuration(),
                                           CheckPolicy::AllInterferencesWithTriangles);
    });
    return result;
}

void Report(benchmark::State& state, const Lattice& lattice, const CollisionResult& first_result) {
    Digest digest;
    digest.Add(first_result);
    state.counters["couples"] = static_cast<double>(lattice.CoupleCount());
    state.counters["interfering"] = static_cast<double>(first_result.Pairs.size());
    state.SetLabel("digest " + digest.Text());
}

void FirstCheck(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        Lattice lattice(static_cast<std::size_t>(state.range(0)));
        if (SkipWhereMemoryIsShort(state, lattice.CoupleCount())) return;
        lattice.Configuration().EnableAllCouples();
        state.ResumeTiming();
        const CollisionResult result = CheckAll(lattice, static_cast<std::size_t>(state.range(1)));
        state.PauseTiming();
        Report(state, lattice, result);
        state.ResumeTiming();
    }
}

void CheckAfterEveryBodyMoved(benchmark::State& state) {
    const auto threads = static_cast<std::size_t>(state.range(1));
    Lattice lattice(static_cast<std::size_t>(state.range(0)));
    if (SkipWhereMemoryIsShort(state, lattice.CoupleCount())) return;
    lattice.Configuration().EnableAllCouples();
    CheckAll(lattice, threads);
    lattice.Move();
    Report(state, lattice, CheckAll(lattice, threads));
    for (auto _ : state) {
        state.PauseTiming();
        lattice.Move();
        state.ResumeTiming();
        benchmark::DoNotOptimize(CheckAll(lattice, threads));
    }
}

BENCHMARK(EnableAllCouples)
    ->ArgName("bodies")
    ->Arg(1000)
    ->Arg(4000)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(FirstCheck)
    ->ArgNames({"bodies", "threads"})
    ->ArgsProduct({{1000, 4000, 10'000}, {1, 2}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(CheckAfterEveryBodyMoved)
    ->ArgNames({"bodies", "threads"})
    ->ArgsProduct({{1000, 4000, 10'000}, {1, 2}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace tarn::bench
