#include "clearance_check.h"

#include "clearance_report.h"

#include "tarn/factory.h"
#include "tarn/proximity_outcome.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

namespace tarn::program {
namespace {

/// Where parts touch, they are no farther apart, whatever was measured elsewhere.
Nearness NearnessOf(const tarn::ProximityOutcome& outcome) {
    if (outcome.touches) return Nearness::Touching;
    if (!outcome.is_judged) return Nearness::NotJudged;
    switch (outcome.state) {
        case tarn::ProximityState::Intersecting:
            return Nearness::Intersecting;
        case tarn::ProximityState::Touching:
            return Nearness::Touching;
        case tarn::ProximityState::WithinClearance:
            return Nearness::TooNear;
        case tarn::ProximityState::BeyondClearance:
            break;
    }
    return Nearness::NotJudged;  // a couple that is judged to be beyond is not reported at all
}

class ClearanceCheck final : public CoupleCheck {
public:
    ClearanceCheck(std::shared_ptr<tarn::IProximityConfiguration> configuration,
                   std::optional<double> clearance)
        : configuration_(std::move(configuration)) {
        report_.clearance = clearance;
    }

    std::vector<std::string> ChooseCouples(Assembly& assembly,
                                           const Model& model,
                                           const CoupleChoice& choice) override {
        return EnableCouples(*configuration_, report_.clearance.value(), assembly, model, choice);
    }

    std::vector<tarn::ICollisionBody*> Bodies() const override { return configuration_->RetrieveElements(); }

    std::uint64_t CountCouples() const override { return configuration_->RetrieveCouplesCount(); }

    void WriteDump(tarn::DumpType type, std::ostream& stream) override {
        tarn::make_unique_proximity_detector()->Dump(*configuration_, type, stream);
    }

    void Store(const std::string& path) override {
        tarn::make_unique_recorder()->Store(configuration_.get(), path);
    }

    void Check() override { couples_ = tarn::MeasureProximity(*configuration_); }

    /// Nearest first; couples that are as near in the order of the parts.
    bool Collect(const PartDirectory& parts, const AssemblySummary& summary) override {
        const auto place = [&parts](const tarn::ProximityPairOutcome& couple) {
            const Nearness nearness = NearnessOf(couple.outcome);
            return std::tuple(nearness, nearness == Nearness::TooNear ? couple.outcome.distance : 0,
                              parts.NumbersOf(*couple.first, *couple.second));
        };
        std::ranges::stable_sort(couples_, {}, place);
        for (const tarn::ProximityPairOutcome& couple : couples_)
            report_.couples.push_back(Described(couple, parts));
        report_.summary = summary;
        return report_.couples.size() > CountOf(report_, Nearness::NotJudged);
    }

    std::vector<std::string> Warnings() const override {
        const std::size_t unjudged_count = CountOf(report_, Nearness::NotJudged);
        if (unjudged_count == 0) return {};
        return {
            fmt::format("{} couples are not judged, because the search could not look closely enough (see "
                        "--help): they may be too near, or not",
                        unjudged_count)};
    }

    std::string FormattedReport(ReportFormat format) const override { return FormatReport(report_, format); }

    std::string FormattedSummary() const override { return FormatSummary(report_); }

private:
    static NearCouple Described(const tarn::ProximityPairOutcome& couple, const PartDirectory& parts) {
        NearCouple reported{parts[*couple.first],
                            parts[*couple.second],
                            NearnessOf(couple.outcome),
                            couple.clearance,
                            {},
                            {},
                            {}};
        if (reported.nearness == Nearness::TooNear) {
            const tarn::SegmentData& segment = couple.outcome.segment;
            reported.distance = couple.outcome.distance;
            reported.first_point = Point{segment.P1X, segment.P1Y, segment.P1Z};
            reported.second_point = Point{segment.P2X, segment.P2Y, segment.P2Z};
        }
        return reported;
    }

    std::shared_ptr<tarn::IProximityConfiguration> configuration_;
    std::vector<tarn::ProximityPairOutcome> couples_;
    ClearanceReport report_;
};

}  // namespace

std::unique_ptr<CoupleCheck> MakeClearanceCheck(std::shared_ptr<tarn::IProximityConfiguration> configuration,
                                                std::optional<double> clearance) {
    return std::make_unique<ClearanceCheck>(std::move(configuration), clearance);
}

}  // namespace tarn::program
