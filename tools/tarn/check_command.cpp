#include "check_command.h"

#include "assembly.h"
#include "console.h"
#include "output_file.h"
#include "readers/model_file.h"
#include "readers/program_error.h"
#include "report.h"
#include "short_names.h"
#include "size_warnings.h"

#include "tarn/factory.h"
#include "tarn/thread_limit.h"

#include <fmt/format.h>

#include <algorithm>
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

/// One run of the command: load, build, dump, check, report.
class CheckRun final {
public:
    explicit CheckRun(const CheckOptions& options) : options_(options), console_(options.is_quiet) {}

    bool Run() {
        RefuseOverwriting();
        report_.summary.loading_seconds = SecondsOf([this] { Load(); });
        LimitThreads([this] { BuildAndCheck(); });
        console_.ClearStatus();
        CollectCouples();
        WriteReport();
        return result_.get_InterferenceDetected();
    }

private:
    /// An output must be neither an input nor the other output: all are lost then, or one.
    void RefuseOverwriting() const {
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

    void Load() {
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

    void LimitThreads(const std::function<void()>& work) const {
        if (options_.thread_limit == 0) return work();
        tarn::RunWithThreadLimit(options_.thread_limit, work);
    }

    void BuildAndCheck() {
        CheckSummary& summary = report_.summary;
        summary.building_seconds = SecondsOf([this] { Build(); });
        if (!options_.dump_path.empty()) Dump();
        console_.ShowStatus(fmt::format("checking {} couples", summary.couple_count));
        summary.checking_seconds =
            SecondsOf([this] { detector_->Check(result_, assembly_.configuration(), options_.policy); });
        summary.interfering_count = result_.Pairs.size();
        summary.stops_at_first = options_.policy == tarn::CheckPolicy::FirstInterferenceStop ||
                                 options_.policy == tarn::CheckPolicy::FirstInterferenceStopWithTriangles;
    }

    void Build() {
        for (const Mesh& mesh : model_.meshes) assembly_.AddMesh(mesh);
        SizeWarnings warnings;
        for (const Part& part : model_.parts) {
            console_.ShowStatus(
                fmt::format("building {} of {}", assembly_.body_count() + 1, model_.parts.size()));
            const std::uint64_t kept_count = assembly_.AddPart(part);
            const std::uint64_t count = Look(warnings, part, kept_count);
            report_.summary.kept_triangle_count += kept_count;
            report_.summary.dropped_triangle_count += count - kept_count;
        }
        for (const auto& [part, warning] : warnings.Summed()) console_.Warn(part, warning);
        model_.meshes = {};  // the engine has its own copies; large assemblies need the memory
        ChooseCouples();
    }

    /// The name of a part of several files begins with its file's, that of a single file's part does not.
    std::uint64_t Look(SizeWarnings& warnings, const Part& part, std::uint64_t kept_count) const {
        try {
            return warnings.Look(part, model_.meshes, kept_count);
        } catch (const FormatError& error) {
            const bool is_named = options_.files.size() > 1 || part.name == options_.files.front();
            throw ProgramError(is_named ? error.what() : options_.files.front() + ": " + error.what());
        }
    }

    void ChooseCouples() {
        for (const std::string& warning :
             EnableCouples(assembly_, model_.parts, model_.owners, options_.couples)) {
            console_.Warn("--ignore", warning);
        }
        report_.summary.body_count = assembly_.body_count();
        report_.summary.couple_count = assembly_.configuration().RetrieveCouplesCount();
        if (report_.summary.couple_count == 0 && assembly_.body_count() > 1) {
            console_.Warn("check", "none of the couples is among those asked for, so nothing is checked");
        }
    }

    void Dump() {
        console_.ShowStatus("writing the dump");
        WriteOutputFile(options_.dump_path, [this](std::ostream& stream) {
            // As many digits as it takes for a reader to get back the very same doubles.
            stream.precision(std::numeric_limits<double>::max_digits10);
            detector_->Dump(assembly_.configuration(), options_.dump_type, stream);
        });
    }

    /// In the order of the parts, whatever order the choice of couples left them in.
    void CollectCouples() {
        const auto numbers = [](const tarn::CollisionPairResult& pair) {
            const std::size_t first = PartOf(*pair.First);
            const std::size_t second = PartOf(*pair.Second);
            return std::pair(std::min(first, second), std::max(first, second));
        };
        std::ranges::stable_sort(result_.Pairs, {}, numbers);
        short_names_ = ShortNames(model_.parts);
        for (const tarn::CollisionPairResult& pair : result_.Pairs) {
            ReportedCouple couple{Reported(*pair.First), Reported(*pair.Second), {}};
            if (!pair.Triangles.empty()) couple.centre = CrossingCentre(pair.Triangles.front());
            report_.couples.push_back(std::move(couple));
        }
    }

    ReportedPart Reported(const tarn::ICollisionBody& body) const {
        const std::size_t number = PartOf(body);
        const Part& part = model_.parts[number];
        return {part.name, short_names_[number], model_.owners[part.owner]};
    }

    std::string FormattedReport() const {
        switch (options_.format) {
            case ReportFormat::Json:
                return FormatJson(report_);
            case ReportFormat::Csv:
                return FormatCsv(report_);
            case ReportFormat::Table:
                break;
        }
        return FormatTable(report_) + FormatSummary(report_.summary);
    }

    /// A file takes the report's place on standard output, where only the summary is left to say.
    void WriteReport() {
        if (!options_.output_path.empty()) {
            const std::string text = FormattedReport();
            WriteOutputFile(options_.output_path, [&text](std::ostream& stream) { stream << text; });
            if (!options_.is_quiet) PrintResult(FormatSummary(report_.summary));
        } else if (!options_.is_quiet) {
            PrintResult(FormattedReport());
        }
    }

    const CheckOptions& options_;
    Console console_;
    Model model_;
    Assembly assembly_;
    std::unique_ptr<tarn::ICollisionDetector> detector_ = tarn::make_unique_detector();
    tarn::CollisionResult result_;
    std::vector<std::string> short_names_;  // of the parts
    Report report_;
};

}  // namespace

bool RunCheck(const CheckOptions& options) {
    return CheckRun(options).Run();
}

}  // namespace tarn::program
