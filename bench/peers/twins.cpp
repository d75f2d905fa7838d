#include "peers/twins.h"

#include "tarn/thread_limit.h"

namespace tarn::bench {

void RegisterTwins(const std::string& name, const Work& tarn_work, const Work& fcl_work) {
    const auto add = [](const std::string& full_name, const Work& work) {
        benchmark::RegisterBenchmark(full_name.c_str(), [work](benchmark::State& state) {
            RunWithThreadLimit(1, [&] { work(state); });
        })->Unit(benchmark::kMillisecond);
    };
    add("tarn/" + name, tarn_work);
    add("fcl/" + name, fcl_work);
}

void RegisterPairTwins(const std::string& name, const Lazy<PairQuestion>& question) {
    const auto all_poses = [question](bool own) {
        return [=](benchmark::State& state) {
            const std::size_t count = question->PoseCount();
            for (auto _ : state) {
                for (std::size_t i = 0; i < count; ++i) {
                    own ? question->AskTarn(i) : question->AskPeer(i);
                }
            }
            state.counters["per_query"] =
                benchmark::Counter(static_cast<double>(count), benchmark::Counter::kIsIterationInvariantRate |
                                                                   benchmark::Counter::kInvert);
            question->Report(state, own);
        };
    };
    RegisterTwins(name, all_poses(true), all_poses(false));
}

void RegisterSceneTwins(const std::string& question_name,
                        const std::string& scene_name,
                        const Lazy<SceneQuestion>& question) {
    const auto first = [question](bool own) {
        return [=](benchmark::State& state) {
            PosedScene& scene = question->Scene();
            for (auto _ : state) {
                if (own) {
                    state.PauseTiming();
                    scene.ForgetOwn();
                    state.ResumeTiming();
                    scene.PlaceOwn(0);
                    question->AskTarn();
                } else {
                    scene.PlacePeer(0);
                    question->AskPeer();
                }
            }
            question->Report(state, own);
        };
    };
    const auto moved = [question](bool own) {
        return [=](benchmark::State& state) {
            PosedScene& scene = question->Scene();
            // Never the first pose, in which assemblies stand as they were drawn and are checked faster.
            std::size_t next = 1;
            for (auto _ : state) {
                if (own) {
                    scene.PlaceOwn(next);
                    question->AskTarn();
                } else {
                    scene.PlacePeer(next);
                    question->AskPeer();
                }
                if (++next == scene.PoseCount()) next = 1;
            }
            question->Report(state, own);
        };
    };
    RegisterTwins(question_name + "_first/" + scene_name, first(true), first(false));
    RegisterTwins(question_name + "_moved/" + scene_name, moved(true), moved(false));
}

}  // namespace tarn::bench
