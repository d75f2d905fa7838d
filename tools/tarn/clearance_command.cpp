#include "clearance_command.h"

#include "assembly_run.h"
#include "clearance_report.h"
#include "readers/coordinate.h"
#include "readers/printable_text.h"
#include "readers/program_error.h"
#include "report_format.h"

#include "tarn/factory.h"
#include "tarn/proximity_outcome.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <tuple>
#include <utility>

namespace tarn::program {
namespace {

/// Where parts touch, they are no farther apart, whatever was measured elsewhere.
Nearness NearnessOf(const tarn::ProximityOutcome& outcome) {
    if (outcome.touches) return Nearness::Touching;
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

class ClearanceRun final : public AssemblyRun {
public:
    explicit ClearanceRun(const ClearanceOptions& options)
        : AssemblyRun(options.assembly, "clearance"),
          options_(options) {}

private:
    std::vector<std::string> ChooseCouples() override {
        return EnableCouples(*configuration_, options_.clearance, assembly(), model(),
                             options_.assembly.couples);
    }

    std::uint64_t CountCouples() const override { return configuration_->RetrieveCouplesCount(); }

    void WriteDump(std::ostream& stream) override {
        tarn::make_unique_proximity_detector()->Dump(*configuration_, options_.assembly.dump_type, stream);
    }

    void CheckCouples() override { couples_ = tarn::MeasureProximity(*configuration_); }

    /// Nearest first; couples that are as near in the order of the parts.
    bool Collect() override {
        const auto place = [](const tarn::ProximityPairOutcome& couple) {
            const Nearness nearness = NearnessOf(couple.outcome);
            return std::tuple(nearness, nearness == Nearness::TooNear ? couple.outcome.distance : 0,
                              PartsOf(*couple.first, *couple.second));
        };
        std::ranges::stable_sort(couples_, {}, place);
        for (const tarn::ProximityPairOutcome& couple : couples_)
            report_.couples.push_back(Described(couple));
        report_.clearance = options_.clearance;
        report_.summary = summary();
        const std::size_t unjudged_count = CountOf(report_, Nearness::NotJudged);
        if (unjudged_count > 0) {
            Warn(
                fmt::format("{} couples are not judged, because box centres all but coincide (see --help): "
                            "they may be too near, or not",
                            unjudged_count));
        }
        return report_.couples.size() > unjudged_count;
    }

    NearCouple Described(const tarn::ProximityPairOutcome& couple) const {
        NearCouple reported{
            Reported(*couple.first), Reported(*couple.second), NearnessOf(couple.outcome), {}, {}, {}};
        if (reported.nearness == Nearness::TooNear) {
            const tarn::SegmentData& segment = couple.outcome.segment;
            reported.distance = couple.outcome.distance;
            reported.first_point = Point{segment.P1X, segment.P1Y, segment.P1Z};
            reported.second_point = Point{segment.P2X, segment.P2Y, segment.P2Z};
        }
        return reported;
    }

    std::string FormattedReport() const override { return FormatReport(report_, options_.assembly.format); }

    std::string FormattedSummary() const override { return FormatSummary(report_); }

    const ClearanceOptions& options_;
    std::unique_ptr<tarn::IProximityConfiguration> configuration_ =
        tarn::make_unique_proximity_configuration();
    std::vector<tarn::ProximityPairOutcome> couples_;
    ClearanceReport report_;
};

}  // namespace

double ParseClearance(std::string_view text) {
    try {
        const double clearance = ParseCoordinate(text, 1);
        if (clearance >= 0) return std::abs(clearance);  // -0 is 0
    } catch (const FormatError&) {
        // Said below: what is wrong matters less here than what is right.
    }
    throw ProgramError(fmt::format(
        "--clearance: '{}' is not a length in millimetres; it must be 0 or more, and finite", Excerpt(text)));
}

bool RunClearance(const ClearanceOptions& options) {
    return ClearanceRun(options).Run();
}

}  // namespace tarn::program
