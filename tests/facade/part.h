#pragma once

#include "ostrel/quarrix/collision_element.h"
#include "ostrel/quarrix/exceptions.h"
#include "registry/elements_manager.h"

#include "tarn/triangle_data.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions::test {

using Mesh = std::vector<tarn::TriangleData>;

/// So many triangles, all in one place.
inline Mesh Stack(std::size_t count) {
    return Mesh(count, {0, 0, 0, 1, 0, 0, 0, 1, 0});
}

class Owner final : public ICollisionElementOwner {
public:
    explicit Owner(std::int32_t hash = 0) : hash_(hash) {}

    std::shared_ptr<ICollisionElementOwner> get_Parent() const override { return nullptr; }
    std::int32_t GetHashCode() const override { return hash_ == 0 ? Object::GetHashCode() : hash_; }

private:
    std::int32_t hash_;
};

/// An element as a caller writes it. It may be used from several threads. Hooks run where the library calls
/// it, before the answer is made; they are to be set before the part is shared.
class Part : public ICollisionElement {
public:
    using Hook = std::function<void()>;

    explicit Part(std::string name = "part",
                  Mesh mesh = Stack(1),
                  std::shared_ptr<ICollisionElementOwner> owner = nullptr)
        : name_(std::move(name)),
          owner_(std::move(owner)),
          mesh_(std::move(mesh)) {
        ++live_count_;
    }
    ~Part() override {
        Run(on_destruction);
        --live_count_;
    }

    static int LiveCount() { return live_count_; }

    Hook on_load;
    Hook on_name;
    Hook on_owner;
    Hook on_position;
    Hook on_destruction;

    std::string get_Name() const override {
        Run(on_name);
        return name_;
    }
    std::shared_ptr<ICollisionElementOwner> get_Owner() const override {
        Run(on_owner);
        return owner_;
    }
    std::array<double, 16> get_Position() const override {
        Run(on_position);
        const std::lock_guard lock(mutex_);
        return position_;
    }
    std::array<double, 16> get_PositionFromBase() const override { return get_Position(); }
    Event& get_PositionChanged() override { return position_changed_; }
    Event& get_CollisionElementChanged() override { return collision_element_changed_; }
    Event& get_FromBasePositionChanged() override { return from_base_position_changed_; }
    void Load(const TriangleCallback& callback) const override {
        Run(on_load);
        Mesh mesh;
        {
            const std::lock_guard lock(mutex_);
            mesh = mesh_;
        }
        for (const tarn::TriangleData& t : mesh)
            callback({t.v0x, t.v0y, t.v0z}, {t.v1x, t.v1y, t.v1z}, {t.v2x, t.v2y, t.v2z});
    }

    /// Changes without telling.
    void SetX(double x) {
        const std::lock_guard lock(mutex_);
        position_[3] = x;
    }
    void SetMesh(Mesh mesh) {
        const std::lock_guard lock(mutex_);
        mesh_ = std::move(mesh);
    }

    void MoveToX(double x) {
        SetX(x);
        position_changed_.raise(this);
    }
    void Reshape(Mesh mesh) {
        SetMesh(std::move(mesh));
        collision_element_changed_.raise(this);
    }

private:
    static void Run(const Hook& hook) {
        if (hook) hook();
    }

    inline static std::atomic<int> live_count_{0};

    std::string name_;
    std::shared_ptr<ICollisionElementOwner> owner_;
    mutable std::mutex mutex_;
    std::array<double, 16> position_{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    Mesh mesh_;
    Event position_changed_;
    Event collision_element_changed_;
    Event from_base_position_changed_;
};

using Parts = std::vector<std::shared_ptr<Part>>;

inline Parts MakeParts(std::size_t count) {
    Parts parts;
    for (std::size_t i = 0; i < count; ++i)
        parts.push_back(std::make_shared<Part>("part " + std::to_string(i)));
    return parts;
}

/// Tests begin and end with an empty registry, and nothing keeps their parts alive.
template <typename Base = testing::Test>
class RegistryTest : public Base {
protected:
    void SetUp() override { ASSERT_EQ(registry_.GetElementsCount(), 0U); }
    void TearDown() override {
        EXPECT_EQ(registry_.GetElementsCount(), 0U);
        EXPECT_EQ(Part::LiveCount(), 0);
        registry_.Clear();
    }

    ElementsManager& registry_ = ElementsManager::get_Instance();
};

/// Class, message and subject of the error that `call` throws; empty if it throws none.
template <typename Call>
std::string ErrorOf(const Call& call) {
    try {
        call();
    } catch (const Exception& error) {
        return error.what();
    }
    return {};
}
inline std::string NullError(const std::string& param_name) {
    return "ArgumentNullException: Value can not be null (parameter '" + param_name + "')";
}
inline const std::string kDisposedError = "ObjectDisposedException";
/// Each call says that its object is disposed.
template <typename... Calls>
void ExpectDisposed(const Calls&... calls) {
    for (const std::function<void()>& call : {std::function<void()>(calls)...})
        EXPECT_EQ(ErrorOf(call), kDisposedError);
}

/// Calls and the errors that they are to throw, empty for none.
template <typename Target>
using Calls = std::vector<std::pair<std::function<void(Target&)>, std::string>>;

template <typename Target>
void ExpectErrors(Target& target, const Calls<Target>& calls) {
    for (const auto& call : calls)
        EXPECT_EQ(ErrorOf([&] { call.first(target); }), call.second) << "call " << &call - calls.data();
}
template <typename Target>
void ExpectAllDisposed(Target& target, const Calls<Target>& calls) {
    for (const auto& call : calls) ExpectDisposed([&] { call.first(target); });
}

}  // namespace Ostrel::Quarrix::Collisions::test
