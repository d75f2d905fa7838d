/// The clearance check by itself: one couple, the second body moved before every check, against the clearance
/// and against the number of triangles. By the plain rules, where they take no more than seconds, and with
/// filters: the digests are the same.

#include "detect/proximity_detector.h"
#include "detect/proximity_search.h"
#include "digest.h"
#include "proximity_tally.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/scene.h"

#include "tarn/factory.h"
#include "tarn/proximity_outcome.h"
#include "tarn/thread_limit.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

namespace tarn::bench {
namespace {

constexpr double kRadius = 50.0;
/// Of a ball's box, about: its radius swings by a tenth.
constexpr double kDiagonal = 2.0 * kRadius * std::numbers::sqrt3;

struct Couple {
    test::Mesh first;
    test::Mesh second;
    std::vector<MATRIX> poses;
};

/// Two bumpy balls, some overlapping and some up to a tenth of the diagonal apart.
Couple Balls(int rings) {
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> distance(2.0 * kRadius, 2.0 * kRadius + 0.1 * kDiagonal);
    Couple couple{test::BumpyBallMesh(kRadius, rings), test::BumpyBallMesh(kRadius, rings), {}};
    for (int i = 0; i < 32; ++i) {
        MATRIX pose = test::RandomRigid(random, 0.0);
        pose[3] = distance(random);
        couple.poses.push_back(pose);
    }
    return couple;
}

/// Two plates of many triangles, face to face at every point: as many pairs of leaves are near as there are
/// leaves.
Couple Plates(int cells) {
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    Couple couple{test::GridMesh(2.0 * kRadius, cells), test::GridMesh(2.0 * kRadius, cells), {}};
    for (int i = 0; i < 4; ++i) {
        couple.poses.push_back(
            test::Translation(10.0 * share(random), 10.0 * share(random), 0.1 + share(random)));
    }
    return couple;
}

/// A fine ball over a corner of a plate of two triangles, far from where the centres of the plate's boxes are:
/// the bound stays long, and the ball's every triangle is near the plate's box.
Couple BallOverPlate(int rings) {
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> gap(0.01 * kDiagonal, 0.1 * kDiagonal);
    Couple couple{test::GridMesh(10.0 * kRadius, 1), test::BumpyBallMesh(kRadius, rings), {}};
    for (int i = 0; i < 16; ++i) {
        MATRIX pose = test::RandomRigid(random, 0.0);
        pose[3] = kRadius;
        pose[7] = kRadius;
        pose[11] = 1.1 * kRadius + gap(random);
        couple.poses.push_back(pose);
    }
    return couple;
}

ProximityOutcome Measure(details::CollisionBody& first,
                         details::CollisionBody& second,
                         double clearance,
                         details::Filters filters) {
    if (filters == details::Filters::On) return MeasureProximity(&first, &second, clearance);
    first.Update();
    second.Update();
    return details::SearchProximity(*first.Hierarchy(), *second.Hierarchy(), clearance).outcome;
}

/// Arguments: whether there are filters, the size that `make` is called with, the clearance in thousandths of
/// the diagonal (0 for an infinite one). One thread.
void CheckClearance(benchmark::State& state, Couple (*make)(int)) {
    const Couple couple = make(static_cast<int>(state.range(1)));
    const double clearance = state.range(2) == 0 ? std::numeric_limits<double>::infinity()
                                                 : static_cast<double>(state.range(2)) / 1000.0 * kDiagonal;
    test::Scene scene;
    details::CollisionBody* still = scene.AddBody(couple.first);
    details::CollisionBody* moved = scene.AddBody(couple.second);
    const auto configuration = make_unique_proximity_configuration();
    configuration->AddElement(still);
    configuration->AddElement(moved, {true, clearance});
    const auto filters = static_cast<details::Filters>(state.range(0));
    details::ProximityDetector detector(filters);

    ProximityTally tally;
    Digest digest;
    RunWithThreadLimit(1, [&] {
        ProximityResult result;
        for (const MATRIX& pose : couple.poses) {
            moved->SetMatrix(pose);
            const ProximityOutcome outcome = Measure(*still, *moved, clearance, filters);
            tally.Add(outcome);
            digest.Add(outcome);
            digest.Add(detector.Check(result, *configuration, CheckPolicy::AllInterferencesWithTriangles));
        }
        std::size_t next = 0;
        for (auto _ : state) {
            moved->SetMatrix(couple.poses[next]);
            benchmark::DoNotOptimize(
                detector.Check(result, *configuration, CheckPolicy::AllInterferencesWithTriangles));
            next = (next + 1) % couple.poses.size();
        }
    });
    state.counters["triangles"] = static_cast<double>(couple.first.size() + couple.second.size()) / 2.0;
    state.counters["poses"] = static_cast<double>(couple.poses.size());
    state.counters["intersecting"] = static_cast<double>(tally.intersecting);
    state.counters["touching"] = static_cast<double>(tally.touching);
    state.counters["within"] = static_cast<double>(tally.within);
    state.counters["unjudged"] = static_cast<double>(tally.unjudged);
    state.counters["retained"] =
        static_cast<double>(tally.retained) / static_cast<double>(couple.poses.size());
    state.SetLabel("digest " + digest.Text());
}

void Named(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"filters", "size", "clearance"})->Unit(benchmark::kMicrosecond);
}

// About 1,000, 10,000, 100,000 and a million triangles each.
BENCHMARK_CAPTURE(CheckClearance, balls, &Balls)
    ->Apply(Named)
    ->ArgsProduct({{0, 1}, {16, 50, 160}, {1, 10, 100, 0}})
    ->ArgsProduct({{1}, {500}, {1, 10, 100, 0}});
BENCHMARK_CAPTURE(CheckClearance, facing_plates, &Plates)
    ->Apply(Named)
    ->ArgsProduct({{0, 1}, {22, 70, 224}, {10}})
    ->ArgsProduct({{1}, {707}, {10}});
BENCHMARK_CAPTURE(CheckClearance, ball_over_plate, &BallOverPlate)
    ->Apply(Named)
    ->ArgsProduct({{0, 1}, {16, 50, 160}, {10, 100, 0}})
    ->ArgsProduct({{1}, {500}, {10, 100, 0}});

}  // namespace
}  // namespace tarn::bench
