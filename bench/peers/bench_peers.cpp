/// The library beside FCL: the same meshes and poses in one process, one thread each.

#include "core/collision_body.h"
#include "detect/collision_detector.h"
#include "digest.h"
#include "lattice.h"
#include "peers/pair_scene.h"
#include "peers/peer_mesh.h"
#include "peers/placed_assembly.h"
#include "peers/ratio_reporter.h"
#include "support/placements.h"
#include "support/scene.h"

#include "tarn/factory.h"
#include "tarn/thread_limit.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace tarn::bench {
namespace {

constexpr std::size_t kPoses = 96;
constexpr int kMoves = 8;

using Work = std::function<void(benchmark::State&)>;

/// Registers the same work done by the library and by FCL, so that their repetitions alternate.
void RegisterTwins(const std::string& name, const Work& tarn_work, const Work& fcl_work) {
    const auto add = [](const std::string& full_name, const Work& work) {
        benchmark::RegisterBenchmark(full_name.c_str(), [work](benchmark::State& state) {
            RunWithThreadLimit(1, [&] { work(state); });
        })->Unit(benchmark::kMillisecond);
    };
    add("tarn/" + name, tarn_work);
    add("fcl/" + name, fcl_work);
}

void AddBuild(const std::string& name, const Triangles& triangles) {
    const auto shared = std::make_shared<Triangles>(triangles);
    RegisterTwins(
        "build/" + name,
        [shared](benchmark::State& state) {
            for (auto _ : state) {
                const auto element = make_unique_element("mesh", *shared);
                details::CollisionBody body(1, "body");
                body.AddElement(element.get());
                body.SetLeafNumber(5);
            }
            state.counters["triangles"] = static_cast<double>(shared->size());
        },
        [shared](benchmark::State& state) {
            for (auto _ : state) benchmark::DoNotOptimize(PeerMesh(*shared).model());
            state.counters["triangles"] = static_cast<double>(shared->size());
        });
}

/// Answers of a list of questions, for digests and comparison.
using Answers = std::vector<bool>;

void Report(benchmark::State& state, const Answers& own, const Answers& peer, const Answers& shown) {
    Digest digest;
    std::size_t yes = 0;
    std::size_t different = 0;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        digest.Add(shown[i] ? 1 : 0);
        yes += shown[i] ? 1U : 0U;
        different += own[i] != peer[i] ? 1U : 0U;
    }
    state.counters["yes"] = static_cast<double>(yes);
    state.counters["differ"] = static_cast<double>(different);
    state.SetLabel("digest " + digest.Text());
}

/// A pair under both libraries.
struct PairUnderTest {
    explicit PairUnderTest(PairScene pair)
        : scene(std::move(pair)),
          first_peer(scene.first),
          second_peer(scene.second) {
        bodies.AddBody(scene.first);
        moved = bodies.AddBody(scene.second);
        bodies.Configuration().EnableAllCouples();
        for (const MATRIX& pose : scene.poses) {
            own_answers.push_back(AskTarn(pose));
            peer_answers.push_back(AskPeer(pose));
        }
    }

    bool AskTarn(const MATRIX& pose) {
        moved->SetMatrix(pose);
        return details::CollisionDetector().Check(bodies.Configuration());
    }
    bool AskPeer(const MATRIX& pose) const { return PeerCollides(first_peer, {}, second_peer, pose); }

    PairScene scene;
    test::Scene bodies;
    details::CollisionBody* moved = nullptr;
    PeerMesh first_peer;
    PeerMesh second_peer;
    Answers own_answers;
    Answers peer_answers;
};

void AddPair(PairScene scene) {
    const std::string name = "moved_pair/" + scene.name;
    const auto pair = std::make_shared<PairUnderTest>(std::move(scene));
    const auto all_poses = [pair](benchmark::State& state, const auto& ask, const Answers& answers) {
        for (auto _ : state) {
            for (const MATRIX& pose : pair->scene.poses) benchmark::DoNotOptimize(ask(pose));
        }
        state.counters["per_query"] =
            benchmark::Counter(static_cast<double>(pair->scene.poses.size()),
                               benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
        Report(state, pair->own_answers, pair->peer_answers, answers);
    };
    RegisterTwins(
        name,
        [=](benchmark::State& state) {
            all_poses(
                state, [&](const MATRIX& pose) { return pair->AskTarn(pose); }, pair->own_answers);
        },
        [=](benchmark::State& state) {
            all_poses(
                state, [&](const MATRIX& pose) { return pair->AskPeer(pose); }, pair->peer_answers);
        });
}

MATRIX Product(const MATRIX& a, const MATRIX& b) {
    MATRIX product;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            double sum = column == 3 ? a[4 * row + 3] : 0.0;
            for (std::size_t k = 0; k < 3; ++k) sum += a[4 * row + k] * b[4 * k + column];
            product[4 * row + column] = sum;
        }
    }
    return product;
}

/// Bodies under both libraries, with poses that move all of them at once.
class AssemblyUnderTest {
public:
    AssemblyUnderTest(const std::vector<Triangles>& meshes,
                      const std::vector<std::size_t>& mesh_of_body,
                      std::vector<std::vector<MATRIX>> poses)
        : poses_(std::move(poses)) {
        std::vector<ICollisionElement*> elements;
        for (const Triangles& mesh : meshes) {
            elements.push_back(bodies_.AddElement(mesh));
            peer_meshes_.emplace_back(mesh);
        }
        for (std::size_t i = 0; i < mesh_of_body.size(); ++i) {
            bodies_.AddBody(elements[mesh_of_body[i]], poses_[0][i]);
            peer_.Add(peer_meshes_[mesh_of_body[i]], poses_[0][i]);
        }
        bodies_.Configuration().EnableAllCouples();
        peer_.Register();
        for (const auto& pose : poses_) {
            own_couples_.push_back(AskTarn(pose));
            peer_couples_.push_back(AskPeer(pose));
        }
    }

    std::size_t PoseCount() const { return poses_.size(); }
    const std::vector<MATRIX>& Pose(std::size_t i) const { return poses_[i]; }

    std::vector<PeerScene::Couple> AskTarn(const std::vector<MATRIX>& pose) {
        for (std::size_t i = 0; i < pose.size(); ++i) bodies_.Bodies()[i]->SetMatrix(pose[i]);
        CollisionResult result;
        details::CollisionDetector().Check(result, bodies_.Configuration(), CheckPolicy::AllInterferences);
        std::vector<PeerScene::Couple> couples;
        couples.reserve(result.Pairs.size());
        for (const CollisionPairResult& pair : result.Pairs) {
            couples.push_back({pair.First->GetId() - 1, pair.Second->GetId() - 1});
        }
        return couples;
    }
    /// Builds all hierarchies again, so that the next check is a first one.
    void Forget() {
        for (const auto& body : bodies_.Bodies()) {
            ICollisionElement* element = body->GetElements().front();
            body->RemoveElement(element);
            body->AddElement(element);
            body->SetLeafNumber(5);
        }
    }
    std::vector<PeerScene::Couple> AskPeer(const std::vector<MATRIX>& pose) {
        for (std::size_t i = 0; i < pose.size(); ++i) peer_.Move(i, pose[i]);
        peer_.Update();
        return peer_.CollidingCouples();
    }

    void ReportCouples(benchmark::State& state, bool own) const {
        const auto& couples = own ? own_couples_ : peer_couples_;
        Digest digest;
        std::size_t different = 0;
        for (std::size_t i = 0; i < couples.size(); ++i) {
            for (const auto& couple : couples[i]) digest.Add((couple.first << 32) | couple.second);
            for (const auto& couple : own_couples_[i]) different += Holds(peer_couples_[i], couple) ? 0U : 1U;
            for (const auto& couple : peer_couples_[i]) different += Holds(own_couples_[i], couple) ? 0U : 1U;
        }
        state.counters["bodies"] = static_cast<double>(bodies_.Bodies().size());
        state.counters["yes"] = static_cast<double>(couples[0].size());
        state.counters["differ"] = static_cast<double>(different) / static_cast<double>(couples.size());
        state.SetLabel("digest " + digest.Text());
    }

private:
    static bool Holds(const std::vector<PeerScene::Couple>& couples, const PeerScene::Couple& couple) {
        return std::ranges::find(couples, couple) != couples.end();
    }

    std::vector<std::vector<MATRIX>> poses_;
    test::Scene bodies_;
    std::vector<PeerMesh> peer_meshes_;
    PeerScene peer_;
    std::vector<std::vector<PeerScene::Couple>> own_couples_;
    std::vector<std::vector<PeerScene::Couple>> peer_couples_;
};

/// All couples, the first time after the hierarchies were built, and again and again after everything has
/// moved.
void AddAssembly(const std::string& name, const std::function<std::shared_ptr<AssemblyUnderTest>()>& make) {
    const auto assembly = std::make_shared<std::shared_ptr<AssemblyUnderTest>>();
    const auto first = [=](bool own) {
        return [=](benchmark::State& state) {
            if (!*assembly) *assembly = make();
            const auto& pose = (*assembly)->Pose(0);
            for (auto _ : state) {
                if (own) {
                    state.PauseTiming();
                    (*assembly)->Forget();
                    state.ResumeTiming();
                    benchmark::DoNotOptimize((*assembly)->AskTarn(pose));
                } else {
                    benchmark::DoNotOptimize((*assembly)->AskPeer(pose));
                }
            }
            (*assembly)->ReportCouples(state, own);
        };
    };
    RegisterTwins("all_couples_first/" + name, first(true), first(false));
    const auto work = [=](bool own) {
        return [=](benchmark::State& state) {
            if (!*assembly) *assembly = make();
            std::size_t next = 0;
            for (auto _ : state) {
                const auto& pose = (*assembly)->Pose(next);
                if (own) {
                    benchmark::DoNotOptimize((*assembly)->AskTarn(pose));
                } else {
                    benchmark::DoNotOptimize((*assembly)->AskPeer(pose));
                }
                next = (next + 1) % (*assembly)->PoseCount();
            }
            (*assembly)->ReportCouples(state, own);
        };
    };
    RegisterTwins("all_couples_moved/" + name, work(true), work(false));
}

std::shared_ptr<AssemblyUnderTest> MoveAsOne(const PlacedAssembly& assembly) {
    std::mt19937_64 random(4);
    std::vector<std::size_t> mesh_of_body;
    for (const auto& body : assembly.bodies) mesh_of_body.push_back(body.mesh);
    std::vector<std::vector<MATRIX>> poses;
    for (int move = 0; move < kMoves; ++move) {
        const MATRIX motion = move == 0 ? MATRIX() : test::RandomRigid(random, 100.0);
        poses.emplace_back();
        for (const auto& body : assembly.bodies) poses.back().push_back(Product(motion, body.placement));
    }
    return std::make_shared<AssemblyUnderTest>(assembly.meshes, mesh_of_body, std::move(poses));
}

std::shared_ptr<AssemblyUnderTest> MakeLattice(std::size_t count) {
    Lattice lattice(count);
    std::vector<std::size_t> mesh_of_body;
    for (std::size_t i = 0; i < count; ++i) mesh_of_body.push_back(Lattice::ShapeOf(i));
    const auto shapes = Lattice::Shapes();
    std::vector<std::vector<MATRIX>> poses{lattice.NextPoses(), lattice.NextPoses()};
    return std::make_shared<AssemblyUnderTest>(std::vector<Triangles>{shapes[0], shapes[1]}, mesh_of_body,
                                               std::move(poses));
}

void AddProceduralScenes() {
    Triangles knot = TorusKnot(2500, 24);
    Triangles ball = test::BumpyBallMesh(40.0, 174);
    AddBuild("torus knot", knot);
    AddPair({"torus knot x bumpy ball", knot, ball, PosesAroundContact(knot, ball, kPoses, 5)});
    for (const std::size_t count : {1000U, 4000U, 10'000U}) {
        AddAssembly("lattice of " + std::to_string(count), [count] { return MakeLattice(count); });
    }
}

void AddRealPair(const std::string& name,
                 const char* first_file,
                 const char* second_file,
                 bool splits_second) {
    Triangles first = ReadFused(DataFolder() / first_file);
    Triangles second = ReadFused(DataFolder() / second_file);
    Centre(first);
    Centre(second);
    if (splits_second) second = SplitInFour(second);
    AddBuild(name, second);
    std::vector<MATRIX> poses = PosesAroundContact(first, second, kPoses, 6);
    AddPair({name, std::move(first), std::move(second), std::move(poses)});
}

void AddRealScenes() {
    AddRealPair("room x robot", "fcl/env.obj", "fcl/rob.obj", false);
    AddRealPair("tray x pulley", "parts/fw_mainboard_tray.stl", "parts/odri_pulley_t30_output.STL", false);
    AddRealPair("counter x fork", "parts/counter.unitsmm.STL", "parts/odri_lower_leg_fork.STL", true);
    for (const char* file : {"so101_arm/so101_arm.glb", "assemblies/cycloidal_drive.glb",
                             "open_duck_bdx/open_duck_bdx.glb", "bim/duplex_apartment.glb"}) {
        AddAssembly(std::filesystem::path(file).stem().string(),
                    [file] { return MoveAsOne(ReadAssembly(DataFolder() / file)); });
    }
}

}  // namespace
}  // namespace tarn::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    tarn::bench::AddProceduralScenes();
    if (std::filesystem::is_directory(tarn::bench::DataFolder())) {
        tarn::bench::AddRealScenes();
    } else {
        std::fprintf(stderr, "skipped: no folder of real meshes at %s\n", tarn::bench::DataFolder().c_str());
    }
    tarn::bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
