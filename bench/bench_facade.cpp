/// What the object model costs over the engine. Both do the same work in turn, on one thread; times are processor
/// time, medians over the turns.

#include "configuration/element_list.h"
#include "configuration/native_collision_configuration_wrapper.h"
#include "detector/detector_arguments.h"
#include "lattice.h"
#include "ostrel/quarrix/collisions.h"

#include "tarn/factory.h"
#include "tarn/thread_limit.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {
namespace {

using tarn::bench::Lattice;
using tarn::test::Mesh;

/// As a caller writes it: the mesh is shared, the position is its own.
class LatticeElement final : public ICollisionElement {
public:
    explicit LatticeElement(const Mesh& mesh) : mesh_(mesh) {}

    void MoveTo(const tarn::MATRIX& pose) {
        std::copy_n(pose.m, std::size(pose.m), position_.begin());
        position_changed_.raise(this);
    }

    std::string get_Name() const override { return "element of the lattice"; }
    std::shared_ptr<ICollisionElementOwner> get_Owner() const override { return nullptr; }
    std::array<double, 16> get_Position() const override { return position_; }
    std::array<double, 16> get_PositionFromBase() const override { return position_; }
    Event& get_PositionChanged() override { return position_changed_; }
    Event& get_CollisionElementChanged() override { return shape_changed_; }
    Event& get_FromBasePositionChanged() override { return base_changed_; }
    void Load(const TriangleCallback& callback) const override {
        for (const tarn::TriangleData& t : mesh_)
            callback({t.v0x, t.v0y, t.v0z}, {t.v1x, t.v1y, t.v1z}, {t.v2x, t.v2y, t.v2z});
    }

private:
    const Mesh& mesh_;
    std::array<double, 16> position_{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    Event position_changed_;
    Event shape_changed_;
    Event base_changed_;
};

using Elements = std::vector<std::shared_ptr<LatticeElement>>;
using Shapes = std::array<Mesh, 2>;
const Shapes kSmall = Lattice::Shapes();

Elements MakeElements(std::size_t count, const Shapes& shapes = kSmall) {
    Elements elements;
    for (std::size_t i = 0; i < count; ++i)
        elements.push_back(std::make_shared<LatticeElement>(shapes[Lattice::ShapeOf(i)]));
    return elements;
}

void Move(const Elements& elements, const std::vector<tarn::MATRIX>& poses) {
    for (std::size_t i = 0; i < elements.size(); ++i) elements[i]->MoveTo(poses[i]);
}

/// The engine's objects of one element.
struct EngineObjects {
    std::unique_ptr<tarn::ICollisionElement> mesh;
    std::unique_ptr<tarn::ICollisionBody> body;
};

std::vector<EngineObjects> MakeEngineObjects(std::size_t count,
                                             tarn::ICollisionConfiguration& configuration,
                                             const Shapes& shapes = kSmall) {
    std::vector<EngineObjects> all;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = "element of the lattice";
        EngineObjects objects{tarn::make_unique_element(name, shapes[Lattice::ShapeOf(i)]),
                              tarn::make_unique_body(static_cast<std::uint32_t>(i), 0, name)};
        objects.body->AddElement(objects.mesh.get());
        objects.body->SetLeafNumber(5);
        objects.body->SetMatrix({});
        configuration.AddElement(objects.body.get(), false);
        all.push_back(std::move(objects));
    }
    return all;
}

/// Processor time of this thread, in milliseconds.
double Now() {
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

/// The times of one kind of work.
class Times {
public:
    template <typename Work>
    void Measure(const Work& work) {
        const double begin = Now();
        work();
        times_.push_back(Now() - begin);
    }
    double Last() const { return times_.back(); }
    double Median() {
        const auto middle = times_.begin() + static_cast<std::ptrdiff_t>(times_.size() / 2);
        std::ranges::nth_element(times_, middle);
        return *middle;
    }

private:
    std::vector<double> times_;
};

void Report(benchmark::State& state, Times& engine, Times& facade) {
    state.counters["engine_ms"] = engine.Median();
    state.counters["facade_ms"] = facade.Median();
    state.counters["ratio"] = facade.Median() / engine.Median();
}

/// Arguments: how many elements, and the rings of balls to be their meshes, 0 for the lattice's small ones.
void AddElements(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const int rings = static_cast<int>(state.range(1));
    const Shapes shapes =
        rings == 0 ? kSmall : Shapes{tarn::test::BallMesh(1.0, rings), tarn::test::BallMesh(2.0, rings)};
    Times engine;
    Times facade;
    tarn::RunWithThreadLimit(1, [&] {
        const auto add_to_engine = [&] {
            const auto configuration = tarn::make_unique_configuration();
            std::vector<EngineObjects> objects;
            engine.Measure([&] { objects = MakeEngineObjects(count, *configuration, shapes); });
        };
        const auto add_to_facade = [&] {
            const Elements elements = MakeElements(count, shapes);
            const auto configuration = CollisionFactory().MakeCollisionConfiguration();
            facade.Measure([&] {
                for (const auto& element : elements)
                    configuration->AddElement(element, CheckCoupleConfiguration::None, 0.0);
            });
        };
        bool engine_first = false;
        for (auto _ : state) {
            engine_first = !engine_first;  // what one frees the other finds
            if (engine_first) add_to_engine();
            add_to_facade();
            if (!engine_first) add_to_engine();
            state.SetIterationTime(facade.Last() * 1e-3);
        }
    });
    state.counters["triangles"] = static_cast<double>(shapes[0].size() + shapes[1].size()) / 2.0;
    Report(state, engine, facade);
}

void MoveElements(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    Lattice lattice(count);
    Times engine;
    Times facade;
    const auto native = tarn::make_unique_configuration();
    const std::vector<EngineObjects> objects = MakeEngineObjects(count, *native);
    const Elements elements = MakeElements(count);
    const auto configuration = CollisionFactory().MakeCollisionConfiguration();
    configuration->AddElements(elements, CheckCoupleConfiguration::None, 0.0);
    for (auto _ : state) {
        const std::vector<tarn::MATRIX> poses = lattice.NextPoses();
        engine.Measure([&] {
            for (std::size_t i = 0; i < count; ++i) objects[i].body->SetMatrix(poses[i]);
        });
        facade.Measure([&] { Move(elements, poses); });
        state.SetIterationTime(facade.Last() * 1e-3);
    }
    Report(state, engine, facade);
}

/// A configuration of all couples that both layers check.
struct SharedScene {
    explicit SharedScene(std::size_t count) : lattice(count), elements(MakeElements(count)) {
        configuration->AddElements(elements, CheckCoupleConfiguration::None, 0.0);
        configuration->EnableAllIntersectChecks(false, 0.0);
    }
    const NativeConfiguration<CollisionKind>& Wrapped() const { return *configuration->Live(); }
    tarn::ICollisionConfiguration& Native() const { return configuration->Live()->Native(); }

    Lattice lattice;
    Elements elements;
    std::shared_ptr<NativeCollisionConfigurationWrapper> configuration =
        std::make_shared<NativeCollisionConfigurationWrapper>();
};

/// Every check finds the same poses, handed in anew.
void Check(benchmark::State& state) {
    const SharedScene scene(static_cast<std::size_t>(state.range(0)));
    Lattice lattice = scene.lattice;
    const std::vector<tarn::MATRIX> here = lattice.NextPoses();
    const std::vector<tarn::MATRIX> elsewhere = lattice.NextPoses();
    const auto native_detector = tarn::make_unique_detector();
    const auto detector = CollisionFactory().MakeCollisionDetector();
    constexpr auto kPolicy = tarn::CheckPolicy::AllInterferencesWithTriangles;
    Times engine;
    Times facade;
    Times objects;
    std::size_t found = 0;
    tarn::RunWithThreadLimit(1, [&] {
        for (auto _ : state) {
            const auto move = [&] {
                Move(scene.elements, elsewhere);
                native_detector->Check(scene.Native());
                Move(scene.elements, here);
            };
            tarn::CollisionResult native;
            move();
            engine.Measure([&] { native_detector->Check(native, scene.Native(), kPolicy); });
            objects.Measure([&] {
                benchmark::DoNotOptimize(std::make_shared<CollisionResult>(
                    true, InterferenceResultType::Intersect, TrianglesOf(native.get_Triangles()),
                    BodyPair2CollisionCouple(native.get_Pairs(), scene.Wrapped())));
            });
            move();
            std::shared_ptr<CollisionResult> result;
            facade.Measure([&] {
                result = detector->Check(scene.configuration, CheckResultType::AllInterferencesWithTriangles);
            });
            found = result->get_CollidingElementCouples().size();
            state.SetIterationTime(facade.Last() * 1e-3);
        }
    });
    Report(state, engine, facade);
    state.counters["result_objects_ms"] = objects.Median();
    state.counters["interfering"] = static_cast<double>(found);
}

void RetrieveCouples(benchmark::State& state) {
    const SharedScene scene(static_cast<std::size_t>(state.range(0)));
    Times engine;
    Times facade;
    tarn::RunWithThreadLimit(1, [&] {
        for (auto _ : state) {
            std::vector<tarn::CollisionPair> pairs;
            engine.Measure([&] { scene.Native().RetrieveCouples(pairs); });
            std::vector<std::shared_ptr<CollisionCouple>> couples;
            facade.Measure([&] { couples = scene.configuration->RetrieveCouples(); });
            state.SetIterationTime(facade.Last() * 1e-3);
        }
    });
    Report(state, engine, facade);
    state.counters["couples"] = static_cast<double>(scene.lattice.CoupleCount());
}

void Timed(benchmark::internal::Benchmark* benchmark) {
    benchmark->Unit(benchmark::kMillisecond)->UseManualTime();
}

BENCHMARK(AddElements)->Apply(Timed)->ArgNames({"elements", "rings"})->Args({10'000, 0})->Iterations(21);
BENCHMARK(AddElements)->Apply(Timed)->ArgNames({"elements", "rings"})->Args({1000, 16})->Iterations(21);
BENCHMARK(MoveElements)->Apply(Timed)->ArgName("elements")->Arg(10'000)->Iterations(101);
BENCHMARK(Check)->Apply(Timed)->ArgName("elements")->Arg(1000)->Iterations(41);
BENCHMARK(Check)->Apply(Timed)->ArgName("elements")->Arg(4000)->Iterations(11);
BENCHMARK(RetrieveCouples)->Apply(Timed)->ArgName("elements")->Arg(1000)->Iterations(11);

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions
