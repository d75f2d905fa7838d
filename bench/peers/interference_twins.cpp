#include "peers/interference_twins.h"

#include "core/collision_body.h"
#include "detect/collision_detector.h"
#include "digest.h"
#include "support/scene.h"

#include "tarn/factory.h"

#include <algorithm>
#include <vector>

namespace tarn::bench {

namespace {

constexpr std::size_t kPoses = 96;

class InterferencePair final : public PairQuestion {
public:
    InterferencePair(const MeshPair& meshes, unsigned seed)
        : poses_(PosesAroundContact(meshes.first, meshes.second, kPoses, seed)),
          first_peer_(meshes.first),
          second_peer_(meshes.second) {
        bodies_.AddBody(meshes.first);
        moved_ = bodies_.AddBody(meshes.second);
        bodies_.Configuration().EnableAllCouples();
        for (const MATRIX& pose : poses_) {
            own_answers_.push_back(Tarn(pose));
            peer_answers_.push_back(Peer(pose));
        }
    }

    std::size_t PoseCount() const override { return poses_.size(); }
    void AskTarn(std::size_t pose) override { benchmark::DoNotOptimize(Tarn(poses_[pose])); }
    void AskPeer(std::size_t pose) override { benchmark::DoNotOptimize(Peer(poses_[pose])); }

    void Report(benchmark::State& state, bool own) const override {
        Digest digest;
        std::size_t yes = 0;
        std::size_t different = 0;
        for (std::size_t i = 0; i < poses_.size(); ++i) {
            const bool answer = own ? own_answers_[i] : peer_answers_[i];
            digest.Add(answer ? 1 : 0);
            yes += answer ? 1U : 0U;
            different += own_answers_[i] != peer_answers_[i] ? 1U : 0U;
        }
        state.counters["yes"] = static_cast<double>(yes);
        state.counters["differ"] = static_cast<double>(different);
        state.SetLabel("digest " + digest.Text());
    }

private:
    bool Tarn(const MATRIX& pose) {
        moved_->SetMatrix(pose);
        return details::CollisionDetector().Check(bodies_.Configuration());
    }
    bool Peer(const MATRIX& pose) const { return PeerCollides(first_peer_, {}, second_peer_, pose); }

    std::vector<MATRIX> poses_;
    test::Scene bodies_;
    details::CollisionBody* moved_ = nullptr;
    PeerMesh first_peer_;
    PeerMesh second_peer_;
    std::vector<bool> own_answers_;
    std::vector<bool> peer_answers_;
};

class InterferenceScene final : public SceneQuestion {
public:
    explicit InterferenceScene(const Lazy<PosedScene>& scene) : scene_(scene) {
        for (std::size_t i = 0; i < scene_->PoseCount(); ++i) {
            scene_->PlaceOwn(i);
            scene_->PlacePeer(i);
            own_couples_.push_back(Tarn());
            peer_couples_.push_back(scene_->Peer().CollidingCouples());
        }
    }

    PosedScene& Scene() override { return *scene_; }
    void AskTarn() override { benchmark::DoNotOptimize(Tarn()); }
    void AskPeer() override { benchmark::DoNotOptimize(scene_->Peer().CollidingCouples()); }

    void Report(benchmark::State& state, bool own) const override {
        const auto& couples = own ? own_couples_ : peer_couples_;
        Digest digest;
        std::size_t different = 0;
        for (std::size_t i = 0; i < couples.size(); ++i) {
            for (const auto& couple : couples[i]) digest.Add((couple.first << 32) | couple.second);
            for (const auto& couple : own_couples_[i]) different += Holds(peer_couples_[i], couple) ? 0U : 1U;
            for (const auto& couple : peer_couples_[i]) different += Holds(own_couples_[i], couple) ? 0U : 1U;
        }
        state.counters["bodies"] = static_cast<double>(scene_->BodyCount());
        state.counters["yes"] = static_cast<double>(couples[0].size());
        state.counters["differ"] = static_cast<double>(different) / static_cast<double>(couples.size());
        state.SetLabel("digest " + digest.Text());
    }

private:
    std::vector<PeerScene::Couple> Tarn() {
        CollisionResult result;
        details::CollisionDetector().Check(result, scene_->Own().Configuration(),
                                           CheckPolicy::AllInterferences);
        std::vector<PeerScene::Couple> couples;
        couples.reserve(result.Pairs.size());
        for (const CollisionPairResult& pair : result.Pairs) {
            couples.push_back({pair.First->GetId() - 1, pair.Second->GetId() - 1});
        }
        return couples;
    }

    static bool Holds(const std::vector<PeerScene::Couple>& couples, const PeerScene::Couple& couple) {
        return std::ranges::find(couples, couple) != couples.end();
    }

    Lazy<PosedScene> scene_;
    std::vector<std::vector<PeerScene::Couple>> own_couples_;
    std::vector<std::vector<PeerScene::Couple>> peer_couples_;
};

}  // namespace

void AddBuild(const std::string& name, const Lazy<Triangles>& triangles) {
    RegisterTwins(
        "build/" + name,
        [triangles](benchmark::State& state) {
            for (auto _ : state) {
                const auto element = make_unique_element("mesh", *triangles);
                details::CollisionBody body(1, "body");
                body.AddElement(element.get());
                body.SetLeafNumber(5);
            }
            state.counters["triangles"] = static_cast<double>(triangles->size());
        },
        [triangles](benchmark::State& state) {
            for (auto _ : state) benchmark::DoNotOptimize(PeerMesh(*triangles).model());
            state.counters["triangles"] = static_cast<double>(triangles->size());
        });
}

void AddInterferencePair(const std::string& name, const Lazy<MeshPair>& meshes, unsigned seed) {
    RegisterPairTwins("moved_pair/" + name,
                      Lazy<PairQuestion>([=] { return std::make_shared<InterferencePair>(*meshes, seed); }));
}

void AddInterferenceScene(const std::string& name, const Lazy<PosedScene>& scene) {
    RegisterSceneTwins("all_couples", name,
                       Lazy<SceneQuestion>([=] { return std::make_shared<InterferenceScene>(scene); }));
}

}  // namespace tarn::bench
