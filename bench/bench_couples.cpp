/// All couples of many small bodies: setting them up, the first check, and a check after every body has
/// moved. By the plain rules, where they take no more than seconds, and with filters: the digests are the
/// same.

#include "detect/collision_detector.h"
#include "digest.h"
#include "lattice.h"
#include "memory_meter.h"
#include "support/scene.h"

#include "tarn/thread_limit.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace tarn::bench {
namespace {

/// What a couple may cost at most, for the decision whether the machine can hold a scene.
constexpr std::size_t kBytesPerCouple = 100;

/// A lattice of bodies under one configuration.
class LatticeScene {
public:
    explicit LatticeScene(std::size_t count) : lattice_(count) {
        const auto shapes = Lattice::Shapes();
        ICollisionElement* elements[] = {scene_.AddElement(shapes[0]), scene_.AddElement(shapes[1])};
        for (std::size_t i = 0; i < count; ++i) scene_.AddBody(elements[Lattice::ShapeOf(i)], {});
        Move();
    }

    void Move() {
        const std::vector<MATRIX> poses = lattice_.NextPoses();
        for (std::size_t i = 0; i < poses.size(); ++i) scene_.Bodies()[i]->SetMatrix(poses[i]);
    }

    std::size_t CoupleCount() const { return lattice_.CoupleCount(); }
    ICollisionConfiguration& Configuration() { return scene_.Configuration(); }

private:
    test::Scene scene_;
    Lattice lattice_;
};

bool SkipWhereMemoryIsShort(benchmark::State& state, std::size_t couple_count) {
    const std::size_t needed = couple_count * kBytesPerCouple;
    if (needed < AvailableBytes()) return false;
    state.SkipWithError(("skipped: needs " + std::to_string(needed >> 20) + " MB of memory").c_str());
    return true;
}

void EnableAllCouples(benchmark::State& state) {
    LatticeScene lattice(static_cast<std::size_t>(state.range(0)));
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

CollisionResult CheckAll(LatticeScene& lattice, std::size_t threads, details::Filters filters) {
    CollisionResult result;
    RunWithThreadLimit(threads, [&] {
        details::CollisionDetector(filters).Check(result, lattice.Configuration(),
                                                  CheckPolicy::AllInterferencesWithTriangles);
    });
    return result;
}

void Report(benchmark::State& state, const LatticeScene& lattice, const CollisionResult& first_result) {
    Digest digest;
    digest.Add(first_result);
    state.counters["couples"] = static_cast<double>(lattice.CoupleCount());
    state.counters["interfering"] = static_cast<double>(first_result.Pairs.size());
    state.SetLabel("digest " + digest.Text());
}

void FirstCheck(benchmark::State& state) {
    const auto threads = static_cast<std::size_t>(state.range(2));
    const auto filters = static_cast<details::Filters>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        LatticeScene lattice(static_cast<std::size_t>(state.range(1)));
        if (SkipWhereMemoryIsShort(state, lattice.CoupleCount())) return;
        lattice.Configuration().EnableAllCouples();
        state.ResumeTiming();
        const CollisionResult result = CheckAll(lattice, threads, filters);
        state.PauseTiming();
        Report(state, lattice, result);
        state.ResumeTiming();
    }
}

void CheckAfterEveryBodyMoved(benchmark::State& state) {
    const auto threads = static_cast<std::size_t>(state.range(2));
    const auto filters = static_cast<details::Filters>(state.range(0));
    LatticeScene lattice(static_cast<std::size_t>(state.range(1)));
    if (SkipWhereMemoryIsShort(state, lattice.CoupleCount())) return;
    lattice.Configuration().EnableAllCouples();
    CheckAll(lattice, threads, filters);
    lattice.Move();
    Report(state, lattice, CheckAll(lattice, threads, filters));
    for (auto _ : state) {
        state.PauseTiming();
        lattice.Move();
        state.ResumeTiming();
        benchmark::DoNotOptimize(CheckAll(lattice, threads, filters));
    }
}

BENCHMARK(EnableAllCouples)
    ->ArgName("bodies")
    ->Arg(1000)
    ->Arg(4000)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(FirstCheck)
    ->ArgNames({"filters", "bodies", "threads"})
    ->ArgsProduct({{0, 1}, {1000, 4000}, {1, 2}})
    ->ArgsProduct({{1}, {10'000}, {1, 2}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(CheckAfterEveryBodyMoved)
    ->ArgNames({"filters", "bodies", "threads"})
    ->ArgsProduct({{0, 1}, {1000, 4000}, {1, 2}})
    ->ArgsProduct({{1}, {10'000}, {1, 2}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace tarn::bench
