/// Storing a scene of one body and reading it back, by triangles: speed, and the most memory at once.

#include "memory_meter.h"
#include "support/meshes.h"
#include "support/scene.h"

#include "tarn/factory.h"
#include "tarn/recorder.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <string>

namespace tarn::bench {
namespace {

/// A scene file in the system's folder for temporary files, removed at the end.
class SceneFile {
public:
    explicit SceneFile(std::size_t triangles)
        : path_(std::filesystem::temp_directory_path() /
                ("bench_scenes_" + std::to_string(triangles) + ".xml")) {
        // A ball of n rings has 4 n (n - 1) triangles.
        const auto rings = static_cast<int>(std::lround(std::sqrt(static_cast<double>(triangles) / 4.0)));
        scene_.AddBody(test::BumpyBallMesh(50.0, rings));
        Store();
    }
    SceneFile(const SceneFile&) = delete;
    SceneFile& operator=(const SceneFile&) = delete;
    ~SceneFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }

    void Store() { make_unique_recorder()->Store(&scene_.Configuration(), path_.string()); }
    void Retrieve() const {
        ICollisionConfiguration* configuration = nullptr;
        make_unique_recorder()->Retrieve(path_.string(), &configuration);
        ReleaseScene(configuration);
    }

    void Report(benchmark::State& state, std::size_t bytes_before) const {
        const auto triangles = static_cast<double>(scene_.Bodies()[0]->GetStatistics().triangle_count);
        state.SetBytesProcessed(static_cast<std::int64_t>(std::filesystem::file_size(path_)) *
                                state.iterations());
        state.counters["peak_bytes_per_triangle"] =
            static_cast<double>(PeakBytes() - bytes_before) / triangles;
        state.counters["file_bytes_per_triangle"] =
            static_cast<double>(std::filesystem::file_size(path_)) / triangles;
    }

private:
    test::Scene scene_;
    std::filesystem::path path_;
};

void StoreScene(benchmark::State& state) {
    SceneFile file(static_cast<std::size_t>(state.range(0)));
    const std::size_t before = LiveBytes();
    ResetPeakBytes();
    for (auto _ : state) file.Store();
    file.Report(state, before);
}

void RetrieveScene(benchmark::State& state) {
    const SceneFile file(static_cast<std::size_t>(state.range(0)));
    const std::size_t before = LiveBytes();
    ResetPeakBytes();
    for (auto _ : state) file.Retrieve();
    file.Report(state, before);
}

BENCHMARK(StoreScene)
    ->ArgName("triangles")
    ->RangeMultiplier(10)
    ->Range(10'000, 1'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(RetrieveScene)
    ->ArgName("triangles")
    ->RangeMultiplier(10)
    ->Range(10'000, 1'000'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tarn::bench
