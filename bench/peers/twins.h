#pragma once

#include "peers/pair_scene.h"
#include "peers/posed_scene.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <string>

namespace tarn::bench {

/// A value that is made when it is first asked for, and shared by its copies: scenes whose benchmarks are
/// filtered out cost nothing.
template <class Value>
class Lazy {
public:
    explicit Lazy(std::function<std::shared_ptr<Value>()> make)
        : state_(std::make_shared<State>(std::move(make))) {}

    Value& operator*() const {
        if (!state_->value) state_->value = state_->make();
        return *state_->value;
    }
    Value* operator->() const { return &**this; }

private:
    struct State {
        explicit State(std::function<std::shared_ptr<Value>()> maker) : make(std::move(maker)) {}
        std::function<std::shared_ptr<Value>()> make;
        std::shared_ptr<Value> value;
    };
    std::shared_ptr<State> state_;
};

using Work = std::function<void(benchmark::State&)>;

/// Registers the same work done by the library and by FCL, one thread each, so that their repetitions
/// alternate.
void RegisterTwins(const std::string& name, const Work& tarn_work, const Work& fcl_work);

/// One question about a pair, asked of both libraries pose by pose.
class PairQuestion {
public:
    virtual ~PairQuestion() = default;
    virtual std::size_t PoseCount() const = 0;
    virtual void AskTarn(std::size_t pose) = 0;
    virtual void AskPeer(std::size_t pose) = 0;
    /// Adds counters and a label.
    virtual void Report(benchmark::State& state, bool own) const = 0;
};

/// Measures a run through all poses.
void RegisterPairTwins(const std::string& name, const Lazy<PairQuestion>& question);

/// One question about all couples of a scene as it stands.
class SceneQuestion {
public:
    virtual ~SceneQuestion() = default;
    virtual PosedScene& Scene() = 0;
    virtual void AskTarn() = 0;
    virtual void AskPeer() = 0;
    /// Adds counters and a label.
    virtual void Report(benchmark::State& state, bool own) const = 0;
};

/// Measures the first answer after the hierarchies were built ("_first"), and answers after everything has
/// moved ("_moved"). Moving is part of what is measured, building is not.
void RegisterSceneTwins(const std::string& question_name,
                        const std::string& scene_name,
                        const Lazy<SceneQuestion>& question);

}  // namespace tarn::bench
