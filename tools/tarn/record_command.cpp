#include "record_command.h"

#include "assembly_loader.h"
#include "clearance_check.h"
#include "console.h"
#include "interference_check.h"
#include "output_file.h"
#include "readers/printable_text.h"
#include "run_steps.h"
#include "scene_file.h"

#include "tarn/factory.h"

#include <fmt/format.h>

namespace tarn::program {
namespace {

/// Whose configuration is what is stored; it is never run.
std::unique_ptr<CoupleCheck> EmptyCheck(const std::optional<double>& clearance) {
    if (clearance) return MakeClearanceCheck(tarn::make_shared_proximity_configuration(), clearance);
    return MakeInterferenceCheck(tarn::make_shared_configuration(), tarn::CheckPolicy::AllInterferences);
}

}  // namespace

void RunRecord(const RecordOptions& options) {
    const std::string& path = options.run.output_path;
    RefuseOverwriting(options.assembly.files, {path});
    Console console(options.run.is_quiet);
    AssemblyLoader loader(options.assembly.files, console);
    const std::unique_ptr<CoupleCheck> check = EmptyCheck(options.clearance);
    loader.Load(options.assembly.unit);
    LimitThreads(options.run.thread_limit, [&] { loader.Build(Placements::Baked); });
    loader.ChooseCouples(*check, options.assembly.couples);
    const AssemblySummary& summary = loader.summary();
    if (summary.couple_count == 0 && summary.body_count > 1)
        console.Warn("record", "none of the couples is among those asked for, so the scene has none");
    console.ShowStatus("writing the scene");
    const double writing_seconds = SecondsOf([&] { WriteScene(*check, path); });
    console.ClearStatus();
    if (options.run.is_quiet) return;
    PrintResult(fmt::format(
        "{}: {} scene, {}, {} couples; loading {:.3f} s, building {:.3f} s, writing {:.3f} s\n",
        Printable(path), options.clearance ? "proximity" : "collision", FormatContent(summary),
        summary.couple_count, summary.loading_seconds, summary.building_seconds, writing_seconds));
}

}  // namespace tarn::program
