#include "check_run.h"

#include "assembly_loader.h"
#include "output_file.h"
#include "run_steps.h"

#include <fmt/format.h>

#include <limits>
#include <ostream>
#include <string>
#include <utility>

namespace tarn::program {
namespace {

void Dump(CoupleCheck& check, const RunOptions& options) {
    WriteOutputFile(options.dump_path, [&](std::ostream& stream) {
        // As many digits as it takes for a reader to get back the very same doubles.
        stream.precision(std::numeric_limits<double>::max_digits10);
        check.WriteDump(options.dump_type, stream);
    });
}

}  // namespace

bool CheckAndReport(CoupleCheck& check,
                    const PartDirectory& parts,
                    AssemblySummary summary,
                    const RunOptions& options,
                    std::string_view command,
                    Console& console) {
    LimitThreads(options.thread_limit, [&] {
        if (!options.dump_path.empty()) {
            console.ShowStatus("writing the dump");
            Dump(check, options);
        }
        console.ShowStatus(fmt::format("checking {} couples", summary.couple_count));
        summary.checking_seconds = SecondsOf([&] { check.Check(); });
    });
    console.ClearStatus();
    const bool found_any = check.Collect(parts, summary);
    for (const std::string& warning : check.Warnings()) console.Warn(command, warning);
    WriteReport(check.FormattedReport(options.format), check.FormattedSummary(), options);
    return found_any;
}

bool CheckAssembly(std::unique_ptr<CoupleCheck> check,
                   const AssemblyOptions& assembly,
                   const RunOptions& options,
                   std::string_view command) {
    RefuseOverwriting(assembly.files, {options.output_path, options.dump_path});
    Console console(options.is_quiet);
    AssemblyLoader loader(assembly.files, console);
    const std::unique_ptr<CoupleCheck> owned = std::move(check);  // gone before the bodies are
    loader.Load(assembly.unit);
    LimitThreads(options.thread_limit, [&] {
        loader.Build(Placements::OfBodies);
        loader.ChooseCouples(*owned, assembly.couples);
    });
    if (loader.summary().couple_count == 0 && loader.summary().body_count > 1)
        console.Warn(command, "none of the couples is among those asked for, so nothing is checked");
    const PartDirectory parts(owned->Bodies(), loader.model().parts, loader.model().owners);
    return CheckAndReport(*owned, parts, loader.summary(), options, command, console);
}

void WriteReport(const std::string& report, const std::string& summary, const RunOptions& options) {
    if (!options.output_path.empty()) {
        WriteOutputFile(options.output_path, [&report](std::ostream& stream) { stream << report; });
        if (!options.is_quiet) PrintResult(summary);
    } else if (!options.is_quiet) {
        PrintResult(report);
    }
}

}  // namespace tarn::program
