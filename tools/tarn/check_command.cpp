#include "check_command.h"

#include "assembly.h"
#include "console.h"
#include "mesh_file.h"
#include "mesh_size_check.h"
#include "output_file.h"
#include "report.h"

#include "tarn/factory.h"
#include "tarn/thread_limit.h"

#include <fmt/format.h>

#include <chrono>
#include <functional>
#include <limits>
#include <ostream>
#include <utility>

namespace tarn::program {
namespace {

double SecondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// One run of the command: load, build, dump, check, print.
class CheckRun final {
public:
    explicit CheckRun(const CheckOptions& options) : options_(options), console_(options.is_quiet) {}

    bool Run() {
        summary_.loading_seconds = SecondsOf([this] { Load(); });
        LimitThreads([this] { BuildAndCheck(); });
        console_.ClearStatus();
        if (!options_.is_quiet) PrintResult(FormatTable(result_) + FormatSummary(summary_));
        return result_.get_InterferenceDetected();
    }

private:
    void Load() {
        for (const std::string& path : options_.files) {
            console_.ShowStatus(fmt::format("loading {} of {}", meshes_.size() + 1, options_.files.size()));
            MeshFile file = ReadMeshFile(path, options_.unit);
            for (const std::string& warning : file.warnings) console_.Warn(path, warning);
            meshes_.push_back(std::move(file.mesh));
        }
        MakeNamesUnique(meshes_);
    }

    void LimitThreads(const std::function<void()>& work) const {
        if (options_.thread_limit == 0) return work();
        tarn::RunWithThreadLimit(options_.thread_limit, work);
    }

    void BuildAndCheck() {
        summary_.building_seconds = SecondsOf([this] { Build(); });
        if (!options_.dump_path.empty()) Dump();
        console_.ShowStatus(fmt::format("checking {} couples", summary_.couple_count));
        summary_.checking_seconds =
            SecondsOf([this] { detector_->Check(result_, assembly_.configuration(), options_.policy); });
        summary_.interfering_count = result_.Pairs.size();
        summary_.stops_at_first = options_.policy == tarn::CheckPolicy::FirstInterferenceStop ||
                                  options_.policy == tarn::CheckPolicy::FirstInterferenceStopWithTriangles;
    }

    void Build() {
        for (Mesh& mesh : meshes_) {
            console_.ShowStatus(fmt::format("building {} of {}", assembly_.body_count() + 1, meshes_.size()));
            const std::uint64_t kept_count = assembly_.Add(mesh);
            const std::string doubt = DescribeDoubtfulSize(mesh.triangles, kept_count);
            if (!doubt.empty()) console_.Warn(mesh.name, doubt);
            summary_.kept_triangle_count += kept_count;
            summary_.dropped_triangle_count += mesh.triangles.size() - kept_count;
            mesh.triangles = {};  // the engine has its own copy; large assemblies need the memory
        }
        assembly_.EnableAllCouples();
        summary_.body_count = assembly_.body_count();
        summary_.couple_count = assembly_.configuration().RetrieveCouplesCount();
    }

    void Dump() {
        console_.ShowStatus("writing the dump");
        WriteOutputFile(options_.dump_path, [this](std::ostream& stream) {
            // As many digits as it takes for a reader to get back the very same doubles.
            stream.precision(std::numeric_limits<double>::max_digits10);
            detector_->Dump(assembly_.configuration(), options_.dump_type, stream);
        });
    }

    const CheckOptions& options_;
    Console console_;
    std::vector<Mesh> meshes_;
    Assembly assembly_;
    std::unique_ptr<tarn::ICollisionDetector> detector_ = tarn::make_unique_detector();
    tarn::CollisionResult result_;
    CheckSummary summary_;
};

}  // namespace

bool RunCheck(const CheckOptions& options) {
    return CheckRun(options).Run();
}

}  // namespace tarn::program
