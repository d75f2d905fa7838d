#include "peers/clearance_twins.h"

#include "digest.h"
#include "proximity_tally.h"

#include "tarn/factory.h"
#include "tarn/proximity_outcome.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>
#include <vector>

namespace tarn::bench {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kPoses = 48;
/// Poses of a scene whose answers are compared.
constexpr std::size_t kComparedPoses = 3;
/// FCL inverts placements as if they were exactly rigid; files round them to single precision. What that does
/// to distances, as a share of the diagonal.
constexpr double kPlacementNoise = 1e-7;
/// What counts as touching: the root of a thousandth.
constexpr double kTouching = 0.0316227766;
constexpr double kLeastGap = 1e-4;
constexpr double kLargestGap = 0.1;

/// How far measured distances lie above those that FCL measures. FCL's own are right up to `tolerance`. Pairs
/// that are nearer than what counts as touching stand apart: leaves that touch are left out, and others win.
class Excess {
public:
    explicit Excess(double tolerance) : tolerance_(tolerance) {}

    void Add(double own, double peer) {
        if (own < peer - tolerance_) ++below_;
        if (peer < kTouching) {
            ++in_contact_;
        } else {
            ratios_.push_back(own / peer);
        }
    }

    void Report(benchmark::State& state) const {
        state.counters["measured"] = static_cast<double>(ratios_.size());
        state.counters["in_contact"] = static_cast<double>(in_contact_);
        state.counters["below"] = static_cast<double>(below_);
        if (ratios_.empty()) return;
        std::vector<double> sorted = ratios_;
        std::ranges::sort(sorted);
        state.counters["ratio"] = sorted[sorted.size() / 2];
        state.counters["worst"] = sorted.back();
    }

private:
    double tolerance_;
    std::vector<double> ratios_;
    std::size_t in_contact_ = 0;
    std::size_t below_ = 0;
};

/// A pair in poses with gaps from the least to the largest, evenly by their logarithms.
struct SeparatedPair {
    SeparatedPair(const MeshPair& meshes, unsigned seed)
        : diagonal(std::max(Diagonal(meshes.first), Diagonal(meshes.second))),
          first_peer(meshes.first),
          second_peer(meshes.second),
          still(bodies.AddBody(meshes.first)),
          moved(bodies.AddBody(meshes.second)) {
        std::vector<double> gaps;
        for (std::size_t i = 0; i < kPoses; ++i) {
            const double share = static_cast<double>(i) / (kPoses - 1);
            gaps.push_back(diagonal * kLeastGap * std::pow(kLargestGap / kLeastGap, share));
        }
        poses = PosesAtGaps(meshes.first, meshes.second, gaps, seed);
    }

    double diagonal;
    PeerMesh first_peer;
    PeerMesh second_peer;
    test::Scene bodies;
    details::CollisionBody* still;
    details::CollisionBody* moved;
    std::vector<MATRIX> poses;
};

class DistanceQuestion final : public PairQuestion {
public:
    DistanceQuestion(const Lazy<SeparatedPair>& pair, double clearance)
        : pair_(pair),
          clearance_(clearance),
          excess_(1e-9 * pair_->diagonal),
          configuration_(make_unique_proximity_configuration()),
          detector_(make_unique_proximity_detector()) {
        configuration_->AddElement(pair_->still);
        configuration_->AddElement(pair_->moved);
        configuration_->ConfigAllCouples({true, clearance_});
        for (const MATRIX& pose : pair_->poses) {
            pair_->moved->SetMatrix(pose);
            const ProximityOutcome own = MeasureProximity(pair_->still, pair_->moved, clearance_);
            const double distance = PeerDistance(pair_->first_peer, {}, pair_->second_peer, pose).distance;
            tally_.Add(own);
            digest_.Add(own);
            if (own.distance >= 0.0) excess_.Add(own.distance, distance);
            near_ += distance <= clearance_ ? 1U : 0U;
        }
    }

    std::size_t PoseCount() const override { return pair_->poses.size(); }
    void AskTarn(std::size_t pose) override {
        pair_->moved->SetMatrix(pair_->poses[pose]);
        ProximityResult result;
        detector_->Check(result, *configuration_, CheckPolicy::AllInterferences);
        benchmark::DoNotOptimize(result.Pairs.data());
    }
    void AskPeer(std::size_t pose) override {
        benchmark::DoNotOptimize(
            PeerDistance(pair_->first_peer, {}, pair_->second_peer, pair_->poses[pose], clearance_));
    }

    void Report(benchmark::State& state, bool own) const override {
        if (!own) {
            state.counters["within"] = static_cast<double>(near_);
            return;
        }
        state.counters["within"] = static_cast<double>(tally_.within);
        state.counters["touching"] = static_cast<double>(tally_.touching);
        state.counters["intersecting"] = static_cast<double>(tally_.intersecting);
        state.counters["unjudged"] = static_cast<double>(tally_.unjudged);
        state.counters["retained"] = static_cast<double>(tally_.retained) / kPoses;
        excess_.Report(state);
        state.SetLabel("digest " + digest_.Text());
    }

private:
    Lazy<SeparatedPair> pair_;
    double clearance_;
    ProximityTally tally_;
    Digest digest_;
    Excess excess_;
    std::unique_ptr<IProximityConfiguration> configuration_;
    std::unique_ptr<IProximityDetector> detector_;
    std::size_t near_ = 0;
};

/// Couples on which the two sides disagree, by kind.
struct Disagreement {
    // FCL finds these within the clearance, and the library does not report them:
    std::size_t touching = 0;        ///< named as touching
    std::size_t unjudged = 0;        ///< named as not judged
    std::size_t beyond = 0;          ///< measured beyond the clearance
    std::size_t contact_beyond = 0;  ///< the same, but FCL's distance is one that counts as touching
    // FCL does not, and the library
    std::size_t tarn_only = 0;     ///< reports them, or names them as touching
    std::size_t unjudged_far = 0;  ///< names them as not judged
};

class ClearanceQuestion final : public SceneQuestion {
public:
    ClearanceQuestion(const Lazy<PosedScene>& scene, double share)
        : scene_(scene),
          clearance_(share * scene_->Diagonal()),
          compared_poses_(std::min(kComparedPoses, scene_->PoseCount())),
          excess_(kPlacementNoise * scene_->Diagonal()),
          configuration_(make_unique_proximity_configuration()),
          detector_(make_unique_proximity_detector()) {
        for (const auto& body : scene_->Own().Bodies()) configuration_->AddElement(body.get());
        configuration_->ConfigAllCouples({true, clearance_});
        for (std::size_t i = 0; i < compared_poses_; ++i) {
            scene_->PlaceOwn(i);
            scene_->PlacePeer(i);
            Compare();
        }
    }

    PosedScene& Scene() override { return *scene_; }
    void AskTarn() override {
        ProximityResult result;
        detector_->Check(result, *configuration_, CheckPolicy::AllInterferences);
        benchmark::DoNotOptimize(result.Pairs.data());
    }
    void AskPeer() override { benchmark::DoNotOptimize(scene_->Peer().CouplesWithin(clearance_).data()); }

    void Report(benchmark::State& state, bool own) const override {
        const auto mean = [this](std::size_t count) {
            return static_cast<double>(count) / static_cast<double>(compared_poses_);
        };
        state.counters["bodies"] = static_cast<double>(scene_->BodyCount());
        state.counters["yes"] = mean(own ? own_count_ : peer_count_);
        if (!own) return;
        state.counters["touching"] = mean(disagreement_.touching);
        state.counters["unjudged"] = mean(disagreement_.unjudged);
        state.counters["beyond"] = mean(disagreement_.beyond);
        state.counters["contact_beyond"] = mean(disagreement_.contact_beyond);
        state.counters["tarn_only"] = mean(disagreement_.tarn_only);
        state.counters["unjudged_far"] = mean(disagreement_.unjudged_far);
        excess_.Report(state);
        state.SetLabel("digest " + digest_.Text());
    }

private:
    using Couple = std::pair<std::size_t, std::size_t>;

    static bool IsReported(ProximityState state) {
        return state == ProximityState::Intersecting || state == ProximityState::WithinClearance;
    }

    /// Not reported, but named as touching.
    static bool IsTouching(const ProximityOutcome& outcome) {
        return outcome.state == ProximityState::Touching ||
               (outcome.state == ProximityState::BeyondClearance && outcome.touches);
    }

    static Couple CoupleOf(const ICollisionBody& a, const ICollisionBody& b) {
        return std::minmax<std::size_t>({a.GetId() - 1, b.GetId() - 1});
    }

    void Compare() {
        std::map<Couple, ProximityOutcome> outcomes;
        for (const ProximityPairOutcome& pair : MeasureProximity(*configuration_)) {
            outcomes.emplace(CoupleOf(*pair.first, *pair.second), pair.outcome);
            digest_.Add(pair.outcome);
            own_count_ += IsReported(pair.outcome.state) ? 1U : 0U;
        }
        const auto peers = scene_->Peer().CouplesWithin(clearance_);
        peer_count_ += peers.size();
        for (const auto& [couple, nearest] : peers) {
            const auto own = outcomes.extract({couple.first, couple.second});
            if (own.empty()) {
                ++(nearest.distance < kTouching ? disagreement_.contact_beyond : disagreement_.beyond);
            } else if (IsTouching(own.mapped())) {
                ++disagreement_.touching;
            } else if (own.mapped().state == ProximityState::BeyondClearance) {
                ++disagreement_.unjudged;
            } else if (own.mapped().state == ProximityState::WithinClearance) {
                excess_.Add(own.mapped().distance, nearest.distance);
            }
        }
        // What is left, FCL does not find.
        for (const auto& [couple, outcome] : outcomes) {
            const bool is_found = IsReported(outcome.state) || IsTouching(outcome);
            ++(is_found ? disagreement_.tarn_only : disagreement_.unjudged_far);
        }
    }

    Lazy<PosedScene> scene_;
    double clearance_;
    std::size_t compared_poses_;
    Excess excess_;
    std::unique_ptr<IProximityConfiguration> configuration_;
    std::unique_ptr<IProximityDetector> detector_;
    Digest digest_;
    Disagreement disagreement_;
    std::size_t own_count_ = 0;
    std::size_t peer_count_ = 0;
};

}  // namespace

void AddDistancePair(const std::string& name, const Lazy<MeshPair>& meshes, unsigned seed) {
    const Lazy<SeparatedPair> pair([=] { return std::make_shared<SeparatedPair>(*meshes, seed); });
    RegisterPairTwins("distance/" + name, Lazy<PairQuestion>([=] {
                          return std::make_shared<DistanceQuestion>(pair, kInfinity);
                      }));
    RegisterPairTwins("distance_within_1%/" + name, Lazy<PairQuestion>([=] {
                          return std::make_shared<DistanceQuestion>(pair, 0.01 * pair->diagonal);
                      }));
}

void AddClearanceScene(const std::string& name, const Lazy<PosedScene>& scene) {
    for (const auto& [label, share] : {std::pair{"0.1%", 0.001}, std::pair{"1%", 0.01}}) {
        RegisterSceneTwins(std::string("within_") + label, name, Lazy<SceneQuestion>([=] {
                               return std::make_shared<ClearanceQuestion>(scene, share);
                           }));
    }
}

}  // namespace tarn::bench
