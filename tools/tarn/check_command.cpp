#include "check_command.h"

#include "assembly_run.h"
#include "check_report.h"
#include "crossing_centre.h"
#include "report_format.h"

#include "tarn/factory.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace tarn::program {
namespace {

class CheckRun final : public AssemblyRun {
public:
    explicit CheckRun(const CheckOptions& options)
        : AssemblyRun(options.assembly, "check"),
          options_(options) {}

private:
    std::vector<std::string> ChooseCouples() override {
        return EnableCouples(*configuration_, assembly(), model(), options_.assembly.couples);
    }

    std::uint64_t CountCouples() const override { return configuration_->RetrieveCouplesCount(); }

    void WriteDump(std::ostream& stream) override {
        detector_->Dump(*configuration_, options_.assembly.dump_type, stream);
    }

    void CheckCouples() override { detector_->Check(result_, *configuration_, options_.policy); }

    /// In the order of the parts, whatever order the choice of couples left them in.
    bool Collect() override {
        const auto parts = [](const tarn::CollisionPairResult& pair) {
            return PartsOf(*pair.First, *pair.Second);
        };
        std::ranges::stable_sort(result_.Pairs, {}, parts);
        for (const tarn::CollisionPairResult& pair : result_.Pairs) {
            InterferingCouple couple{Reported(*pair.First), Reported(*pair.Second), {}};
            if (!pair.Triangles.empty()) couple.centre = CrossingCentre(pair.Triangles.front());
            report_.couples.push_back(std::move(couple));
        }
        report_.summary = summary();
        report_.stops_at_first = options_.policy == tarn::CheckPolicy::FirstInterferenceStop ||
                                 options_.policy == tarn::CheckPolicy::FirstInterferenceStopWithTriangles;
        return result_.get_InterferenceDetected();
    }

    std::string FormattedReport() const override { return FormatReport(report_, options_.assembly.format); }

    std::string FormattedSummary() const override { return FormatSummary(report_); }

    const CheckOptions& options_;
    std::unique_ptr<tarn::ICollisionConfiguration> configuration_ = tarn::make_unique_configuration();
    std::unique_ptr<tarn::ICollisionDetector> detector_ = tarn::make_unique_detector();
    tarn::CollisionResult result_;
    CheckReport report_;
};

}  // namespace

bool RunCheck(const CheckOptions& options) {
    return CheckRun(options).Run();
}

}  // namespace tarn::program
