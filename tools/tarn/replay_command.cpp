#include "replay_command.h"

#include "check_run.h"
#include "clearance_check.h"
#include "console.h"
#include "interference_check.h"
#include "output_file.h"
#include "run_steps.h"
#include "scene_file.h"

#include <optional>

namespace tarn::program {
namespace {

std::unique_ptr<CoupleCheck> CheckOf(const Scene& scene) {
    if (const auto* const collision = std::get_if<std::shared_ptr<tarn::ICollisionConfiguration>>(&scene))
        return MakeInterferenceCheck(*collision, tarn::CheckPolicy::AllInterferencesWithTriangles);
    return MakeClearanceCheck(std::get<std::shared_ptr<tarn::IProximityConfiguration>>(scene), std::nullopt);
}

}  // namespace

bool RunReplay(const ReplayOptions& options) {
    RefuseOverwriting({options.file}, {options.run.output_path});
    Console console(options.run.is_quiet);
    console.ShowStatus("loading");
    std::unique_ptr<CoupleCheck> check;
    AssemblySummary summary;
    // Reading builds the hierarchies as well.
    summary.loading_seconds = SecondsOf(
        [&] { LimitThreads(options.run.thread_limit, [&] { check = CheckOf(ReadScene(options.file)); }); });
    const std::vector<tarn::ICollisionBody*> bodies = check->Bodies();
    summary.body_count = bodies.size();
    for (const tarn::ICollisionBody* const body : bodies)
        summary.kept_triangle_count += body->GetStatistics().triangle_count;
    summary.dropped_triangle_count.reset();
    summary.couple_count = check->CountCouples();
    if (summary.couple_count == 0 && bodies.size() > 1)
        console.Warn(options.file, "the scene has no couples, so nothing is checked");
    const Model model = ModelOf(bodies);
    const PartDirectory parts(bodies, model.parts, model.owners);
    return CheckAndReport(*check, parts, summary, options.run, "replay", console);
}

}  // namespace tarn::program
