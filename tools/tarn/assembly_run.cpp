#include "assembly_run.h"

#include "output_file.h"
#include "readers/model_file.h"
#include "readers/program_error.h"
#include "short_names.h"

#include "tarn/thread_limit.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
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

}  // namespace

AssemblyRun::AssemblyRun(const AssemblyOptions& options, std::string_view command)
    : options_(options),
      command_(command),
      console_(options.is_quiet) {}

bool AssemblyRun::Run() {
    RefuseOverwriting();
    summary_.loading_seconds = SecondsOf([this] { Load(); });
    LimitThreads([this] { BuildAndCheck(); });
    console_.ClearStatus();
    short_names_ = ShortNames(model_.parts);
    const bool found_any = Collect();
    WriteReport();
    return found_any;
}

ReportedPart AssemblyRun::Reported(const tarn::ICollisionBody& body) const {
    const std::size_t number = PartOf(body);
    const Part& part = model_.parts[number];
    return {part.name, short_names_[number], model_.owners[part.owner]};
}

void AssemblyRun::Warn(std::string_view warning) {
    console_.Warn(command_, warning);
}

/// An output must be neither an input nor the other output: all are lost then, or one.
void AssemblyRun::RefuseOverwriting() const {
    std::vector<std::string> taken = options_.files;
    for (const std::string& path : {options_.output_path, options_.dump_path}) {
        if (path.empty()) continue;
        const auto is_same = [&path](const std::string& other) { return IsSameFile(path, other); };
        if (std::ranges::any_of(taken, is_same)) {
            throw ProgramError(path + ": is to be written, but is another of the files given");
        }
        taken.push_back(path);
    }
}

void AssemblyRun::Load() {
    std::size_t number = 0;
    for (const std::string& path : options_.files) {
        console_.ShowStatus(fmt::format("loading {} of {}", ++number, options_.files.size()));
        Model file = ReadModelFile(path, options_.unit);
        for (const std::string& warning : file.warnings) console_.Warn(path, warning);
        if (options_.files.size() == 1) {
            NameAlone(file, path);
            model_ = std::move(file);
        } else {
            NameBesideOthers(file, path);
            Append(model_, std::move(file));
        }
    }
    std::vector<std::string*> names;
    for (Part& part : model_.parts) names.push_back(&part.name);
    MakeUnique(names);
    names.clear();
    for (std::string& owner : model_.owners) names.push_back(&owner);
    MakeUnique(names);
}

void AssemblyRun::LimitThreads(const std::function<void()>& work) const {
    if (options_.thread_limit == 0) return work();
    tarn::RunWithThreadLimit(options_.thread_limit, work);
}

void AssemblyRun::BuildAndCheck() {
    summary_.building_seconds = SecondsOf([this] { Build(); });
    if (!options_.dump_path.empty()) Dump();
    console_.ShowStatus(fmt::format("checking {} couples", summary_.couple_count));
    summary_.checking_seconds = SecondsOf([this] { CheckCouples(); });
}

void AssemblyRun::Build() {
    for (const Mesh& mesh : model_.meshes) assembly_.AddMesh(mesh);
    SizeWarnings warnings;
    for (const Part& part : model_.parts) {
        console_.ShowStatus(
            fmt::format("building {} of {}", assembly_.body_count() + 1, model_.parts.size()));
        const std::uint64_t kept_count = assembly_.AddPart(part);
        const std::uint64_t count = Look(warnings, part, kept_count);
        summary_.kept_triangle_count += kept_count;
        summary_.dropped_triangle_count += count - kept_count;
    }
    for (const auto& [part, warning] : warnings.Summed()) console_.Warn(part, warning);
    model_.meshes = {};  // the engine has its own copies; large assemblies need the memory
    ChooseAndCount();
}

/// The name of a part of several files begins with its file's, that of a single file's part does not.
std::uint64_t AssemblyRun::Look(SizeWarnings& warnings, const Part& part, std::uint64_t kept_count) const {
    try {
        return warnings.Look(part, model_.meshes, kept_count);
    } catch (const FormatError& error) {
        const bool is_named = options_.files.size() > 1 || part.name == options_.files.front();
        throw ProgramError(is_named ? error.what() : options_.files.front() + ": " + error.what());
    }
}

void AssemblyRun::ChooseAndCount() {
    for (const std::string& warning : ChooseCouples()) console_.Warn("--ignore", warning);
    summary_.body_count = assembly_.body_count();
    summary_.couple_count = CountCouples();
    if (summary_.couple_count == 0 && assembly_.body_count() > 1) {
        Warn("none of the couples is among those asked for, so nothing is checked");
    }
}

void AssemblyRun::Dump() {
    console_.ShowStatus("writing the dump");
    WriteOutputFile(options_.dump_path, [this](std::ostream& stream) {
        // As many digits as it takes for a reader to get back the very same doubles.
        stream.precision(std::numeric_limits<double>::max_digits10);
        WriteDump(stream);
    });
}

/// A file takes the report's place on standard output, where only the summary is left to say.
void AssemblyRun::WriteReport() const {
    if (!options_.output_path.empty()) {
        const std::string text = FormattedReport();
        WriteOutputFile(options_.output_path, [&text](std::ostream& stream) { stream << text; });
        if (!options_.is_quiet) PrintResult(FormattedSummary());
    } else if (!options_.is_quiet) {
        PrintResult(FormattedReport());
    }
}

}  // namespace tarn::program
