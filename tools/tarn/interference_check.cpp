#include "interference_check.h"

#include "check_report.h"
#include "crossing_centre.h"

#include "tarn/factory.h"

#include <algorithm>
#include <utility>

namespace tarn::program {
namespace {

class InterferenceCheck final : public CoupleCheck {
public:
    InterferenceCheck(std::shared_ptr<tarn::ICollisionConfiguration> configuration, tarn::CheckPolicy policy)
        : configuration_(std::move(configuration)),
          policy_(policy) {}

    std::vector<std::string> ChooseCouples(Assembly& assembly,
                                           const Model& model,
                                           const CoupleChoice& choice) override {
        return EnableCouples(*configuration_, assembly, model, choice);
    }

    std::vector<tarn::ICollisionBody*> Bodies() const override { return configuration_->RetrieveElements(); }

    std::uint64_t CountCouples() const override { return configuration_->RetrieveCouplesCount(); }

    void WriteDump(tarn::DumpType type, std::ostream& stream) override {
        detector_->Dump(*configuration_, type, stream);
    }

    void Store(const std::string& path) override {
        tarn::make_unique_recorder()->Store(configuration_.get(), path);
    }

    void Check() override { detector_->Check(result_, *configuration_, policy_); }

    /// In the order of the parts, whatever order the choice of couples left them in.
    bool Collect(const PartDirectory& parts, const AssemblySummary& summary) override {
        const auto numbers = [&parts](const tarn::CollisionPairResult& pair) {
            return parts.NumbersOf(*pair.First, *pair.Second);
        };
        std::ranges::stable_sort(result_.Pairs, {}, numbers);
        for (const tarn::CollisionPairResult& pair : result_.Pairs) {
            InterferingCouple couple{parts[*pair.First], parts[*pair.Second], {}};
            if (!pair.Triangles.empty()) couple.centre = CrossingCentre(pair.Triangles.front());
            report_.couples.push_back(std::move(couple));
        }
        report_.summary = summary;
        report_.stops_at_first = policy_ == tarn::CheckPolicy::FirstInterferenceStop ||
                                 policy_ == tarn::CheckPolicy::FirstInterferenceStopWithTriangles;
        return result_.get_InterferenceDetected();
    }

    std::string FormattedReport(ReportFormat format) const override { return FormatReport(report_, format); }

    std::string FormattedSummary() const override { return FormatSummary(report_); }

private:
    std::shared_ptr<tarn::ICollisionConfiguration> configuration_;
    tarn::CheckPolicy policy_;
    std::unique_ptr<tarn::ICollisionDetector> detector_ = tarn::make_unique_detector();
    tarn::CollisionResult result_;
    CheckReport report_;
};

}  // namespace

std::unique_ptr<CoupleCheck> MakeInterferenceCheck(
    std::shared_ptr<tarn::ICollisionConfiguration> configuration, tarn::CheckPolicy policy) {
    return std::make_unique<InterferenceCheck>(std::move(configuration), policy);
}

}  // namespace tarn::program
