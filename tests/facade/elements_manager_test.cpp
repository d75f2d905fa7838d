#include "registry/elements_manager.h"

#include "facade/part.h"
#include "ostrel/quarrix/collision_group.h"
#include "registry/collision_element.h"
#include "registry/collision_owner.h"
#include "support/meshes.h"

#include "tarn/factory.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

namespace Ostrel::Quarrix::Collisions {
namespace {

using tarn::test::BoxMesh;
using test::ErrorOf;
using test::MakeParts;
using test::Mesh;
using test::Part;

/// Equal to all others of the same key.
class Keyed final : public Part {
public:
    explicit Keyed(int key) : key_(key) {}
    bool Equals(const Object* other) const override {
        const auto* keyed = dynamic_cast<const Keyed*>(other);
        return keyed && keyed->key_ == key_;
    }
    std::int32_t GetHashCode() const override { return -key_; }

private:
    int key_;
};

/// A composite, which has no mesh.
class Group final : public ICollisionGroup {
public:
    std::string get_Name() const override { return "group"; }
    std::shared_ptr<ICollisionElementOwner> get_Owner() const override { return nullptr; }
    std::array<double, 16> get_Position() const override { return {}; }
    std::array<double, 16> get_PositionFromBase() const override { return {}; }
    Event& get_PositionChanged() override { return event_; }
    Event& get_CollisionElementChanged() override { return event_; }
    Event& get_FromBasePositionChanged() override { return event_; }
    std::vector<std::shared_ptr<ICollisionElement>> get_Elements() const override { return {}; }
    Event& get_ElementListChanged() override { return event_; }
    void Load(const PointCallback&) const override {}

private:
    Event event_;
};

class ElementsManagerTest : public test::RegistryTest<> {
protected:
    /// Whether the body, once its placement is applied, interferes with a box around (x, 0, 0).
    static bool IsAt(const ElementsManager::Wrapper& wrapper, double x) {
        const auto mesh = tarn::make_unique_element("probe", BoxMesh(x - 0.1, -0.1, -0.1, x + 0.1, 0.1, 0.1));
        const auto probe = tarn::make_unique_body(1, 0, "probe");
        probe->AddElement(mesh.get());
        probe->SetLeafNumber(5);
        const auto configuration = tarn::make_unique_configuration();
        configuration->AddElement(probe.get(), true);
        configuration->AddElement(wrapper->get_Body(), true);
        return tarn::make_unique_detector()->Check(*configuration);
    }
};

TEST_F(ElementsManagerTest, CountsUses) {
    const auto part = std::make_shared<Part>("A");
    EXPECT_EQ(registry_.Dump(), "Manager is empty");
    EXPECT_EQ(registry_.Get(part), nullptr);
    EXPECT_EQ(registry_.GetReferenceCount(part), 0);
    registry_.Remove(part);
    EXPECT_FALSE(registry_.IncreaseReferenceCount(part));
    EXPECT_FALSE(registry_.DecreaseReferenceCount(part));
    const auto wrapper = registry_.Add(part);
    EXPECT_EQ(registry_.Add(part), wrapper);
    EXPECT_EQ(registry_.Get(part), wrapper);
    EXPECT_EQ(registry_.GetReferenceCount(part), 2);
#ifdef _WIN32
    EXPECT_EQ(registry_.Dump(), "Manager elements count is 1\r\nA [2]\n");
#else
    EXPECT_EQ(registry_.Dump(), "Manager elements count is 1\nA [2]\n");
#endif
    registry_.Remove(part);
    EXPECT_EQ(registry_.GetReferenceCount(part), 1);
    EXPECT_FALSE(wrapper->IsDisposed());
    registry_.Remove(part);
    EXPECT_EQ(registry_.GetElementsCount(), 0U);
    test::ExpectDisposed([&] { (void)wrapper->get_Body(); });
    part->MoveToX(1);
    part->Reshape(BoxMesh(0, 0, 0, 1, 1, 1));
    EXPECT_NE(registry_.Add(part), wrapper);
    registry_.Remove(part);
}

TEST_F(ElementsManagerTest, NeverDestroysOnDecrease) {
    const auto part = std::make_shared<Part>();
    const auto wrapper = registry_.Add(part);
    EXPECT_TRUE(registry_.DecreaseReferenceCount(part));
    EXPECT_EQ(registry_.GetReferenceCount(part), 0);
    EXPECT_EQ(registry_.Get(part), wrapper);
    registry_.Remove(part);
    EXPECT_EQ(registry_.GetReferenceCount(part), -1);
    EXPECT_EQ(registry_.GetElementsCount(), 1U);
    EXPECT_EQ(registry_.IncreaseReferenceCount(*wrapper), 0);
    EXPECT_EQ(registry_.IncreaseReferenceCount(*wrapper), 1);
    EXPECT_EQ(registry_.DecreaseReferenceCount(*wrapper), 0);
    registry_.Clear();
    EXPECT_TRUE(wrapper->IsDisposed());
    EXPECT_EQ(registry_.IncreaseReferenceCount(*wrapper), 0) << "no longer registered";
    EXPECT_EQ(registry_.DecreaseReferenceCount(*wrapper), -1) << "registered or not";
}

TEST_F(ElementsManagerTest, TakesLists) {
    const auto parts = MakeParts(3);
    const ElementsManager::Elements three(parts.begin(), parts.end());
    const ElementsManager::Elements two{parts[2], parts[0]};
    const auto wrappers = registry_.Add(two);
    ASSERT_EQ(wrappers.size(), 2U);
    EXPECT_EQ(registry_.Get(three), (std::vector{wrappers[1], ElementsManager::Wrapper(), wrappers[0]}));
    EXPECT_EQ(registry_.GetElementsExist(three), (std::vector{true, false, true}));
    EXPECT_TRUE(registry_.CheckElementsExist({parts[0], parts[2]})) << "in another order";
    EXPECT_FALSE(registry_.CheckElementsExist(three)) << "one more";
    EXPECT_FALSE(registry_.CheckElementsExist({parts[0], parts[1]}));
    EXPECT_FALSE(registry_.CheckElementsExist({parts[0]}));
    EXPECT_FALSE(registry_.CheckElementsExist({parts[0], parts[0]}));
    registry_.IncreaseReferenceCount(three);
    EXPECT_EQ(registry_.GetReferenceCount(parts[0]), 2);
    EXPECT_EQ(registry_.GetReferenceCount(parts[1]), 0);
    registry_.Add(parts[1]);
    EXPECT_EQ(registry_.Dump().substr(27), "\npart 2 [2]\npart 0 [2]\npart 1 [1]\n");
    registry_.DecreaseReferenceCount(two);
    registry_.Remove(three);
    EXPECT_EQ(registry_.GetElementsCount(), 0U);
}

TEST_F(ElementsManagerTest, TellsElementsApartAsTheyDo) {
    const auto one = std::make_shared<Keyed>(2);
    const auto same = std::make_shared<Keyed>(2);
    const auto wrapper = registry_.Add(one);
    EXPECT_EQ(registry_.Add(same), wrapper);
    EXPECT_EQ(registry_.GetReferenceCount(same), 2);
    EXPECT_EQ(wrapper->get_Body()->GetId(), 0xFFFFFFFEU);
    EXPECT_EQ(registry_.GetElementsCount(), 1U);
    EXPECT_TRUE(registry_.CheckElementsExist({same}));
    registry_.Remove(one);
    registry_.Remove(same);
}

TEST_F(ElementsManagerTest, BuildsBodiesAsElementsSay) {
    const auto owner = std::make_shared<test::Owner>(-3);
    const auto part = std::make_shared<Part>("n\xC3\xA4me", BoxMesh(0, 0, 0, 1, 1, 1), owner);
    const tarn::ICollisionBody& body = *registry_.Add(part)->get_Body();
    EXPECT_EQ(body.GetId(), static_cast<std::uint32_t>(part->GetHashCode()));
    EXPECT_EQ(body.GetOwner(), 0xFFFFFFFFFFFFFFFDU) << "sign-extended";
    EXPECT_EQ(body.GetName(), "n\xC3\xA4me");
    ASSERT_EQ(body.GetElements().size(), 1U);
    EXPECT_EQ(body.GetElements()[0]->GetName(), "n\xC3\xA4me");
    EXPECT_EQ(body.GetElements()[0]->GetTrianglesCount(), 12U);
    EXPECT_EQ(body.GetStatistics().leaf_number, 5U);
    EXPECT_EQ(body.GetStatistics().triangle_count, 12U);
    const auto no_owner = std::make_shared<Part>("", Mesh{});
    EXPECT_EQ(registry_.Add(no_owner)->get_Body()->GetOwner(), 0U);
    registry_.Clear();
}

TEST_F(ElementsManagerTest, RefusesElementsWithoutAMesh) {
    EXPECT_EQ(ErrorOf([&] { registry_.Add(std::make_shared<Group>()); }),
              "ArgumentNullException: Value can not be null");
    const auto part = std::make_shared<Part>();
    part->on_load = [] { throw std::runtime_error("no mesh today"); };
    EXPECT_THROW(registry_.Add(part), std::runtime_error);
    EXPECT_EQ(registry_.GetElementsCount(), 0U);
}

TEST_F(ElementsManagerTest, FollowsTheElementsEvents) {
    const auto part = std::make_shared<Part>("part", BoxMesh(-0.5, -0.5, -0.5, 0.5, 0.5, 0.5));
    part->SetX(3);
    const auto wrapper = registry_.Add(part);
    EXPECT_TRUE(IsAt(wrapper, 3.5)) << "a corner of the box crosses the probe";
    part->MoveToX(7);
    EXPECT_TRUE(IsAt(wrapper, 7.5));
    EXPECT_FALSE(IsAt(wrapper, 3.5));
    part->SetX(20);
    part->get_FromBasePositionChanged().raise(part.get());
    EXPECT_TRUE(IsAt(wrapper, 7.5)) << "nobody follows that event";

    // A change of shape reads the position, too.
    const auto* const old_mesh = wrapper->get_Body()->GetElements()[0];
    part->Reshape(BoxMesh(1.5, -0.5, -0.5, 2.5, 0.5, 0.5));
    EXPECT_TRUE(IsAt(wrapper, 21.5));
    EXPECT_FALSE(IsAt(wrapper, 20.5));
    ASSERT_EQ(wrapper->get_Body()->GetElements().size(), 1U);
    EXPECT_NE(wrapper->get_Body()->GetElements()[0], old_mesh);
    EXPECT_EQ(wrapper->get_Body()->GetStatistics().leaf_number, 5U);

    // The old mesh stays where loading fails.
    part->on_load = [] { throw std::runtime_error("no mesh today"); };
    EXPECT_THROW(part->Reshape(BoxMesh(5, 5, 5, 6, 6, 6)), std::runtime_error);
    EXPECT_TRUE(IsAt(wrapper, 21.5));
    part->on_load = nullptr;
    part->Reshape({});
    EXPECT_FALSE(IsAt(wrapper, 21.5));
    EXPECT_EQ(wrapper->get_Body()->GetStatistics().triangle_count, 0U);
    registry_.Remove(part);
}

TEST_F(ElementsManagerTest, MissesNoChangeWhileABodyIsBuilt) {
    for (const bool reshapes : {false, true}) {
        const auto part = std::make_shared<Part>("part", BoxMesh(-0.5, -0.5, -0.5, 0.5, 0.5, 0.5));
        part->on_owner = [&part = *part, reshapes] {
            if (reshapes) part.Reshape(BoxMesh(-0.7, -0.5, -0.5, 0.7, 0.5, 0.5));
        };
        // The body is placed by the first answer; what is raised meanwhile asks for another.
        part->on_position = [&part = *part, is_first = true]() mutable {
            if (std::exchange(is_first, false)) {
                part.MoveToX(4);
            } else {
                part.SetX(6);
            }
        };
        EXPECT_TRUE(IsAt(registry_.Add(part), reshapes ? 6.7 : 6.5));
        registry_.Remove(part);
    }
}

// Of changes at the same time the latest counts, whichever handler ends last.
TEST_F(ElementsManagerTest, KeepsTheNewestStateOfAnElement) {
    const auto part = std::make_shared<Part>("part", test::Stack(2));
    const auto wrapper = registry_.Add(part);
    // While one run of a handler waits, another takes place from end to end; then the first goes on with what
    // it could have read before.
    part->on_load = [&, first = true]() mutable {
        if (!std::exchange(first, false)) return;
        std::thread([&] { part->Reshape(test::Stack(5)); }).join();
        part->SetMesh(test::Stack(3));
    };
    part->Reshape(test::Stack(2));
    EXPECT_EQ(wrapper->get_Body()->GetStatistics().triangle_count, 5U);
    part->on_load = nullptr;
    part->Reshape(BoxMesh(-0.5, -0.5, -0.5, 0.5, 0.5, 0.5));
    part->on_position = [&, first = true]() mutable {
        if (!std::exchange(first, false)) return;
        std::thread([&] { part->MoveToX(5); }).join();
        part->SetX(3);
    };
    part->MoveToX(1);
    EXPECT_TRUE(IsAt(wrapper, 5.5));
    registry_.Remove(part);
}

TEST(CollisionElement, HandsOverTheSameArraysAndNeverMoves) {
    const auto owner = std::make_shared<CollisionOwner>(5);
    CollisionElement element("stored", 1, owner, BoxMesh(0, 0, 0, 1, 2, 3));
    EXPECT_EQ(element.get_Position(),
              (std::array<double, 16>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_EQ(element.get_PositionFromBase(), element.get_Position());
    std::array<const double*, 3> arrays{};
    Mesh seen;
    element.Load([&](const auto& v0, const auto& v1, const auto& v2) {
        const std::array<const double*, 3> these{v0.data(), v1.data(), v2.data()};
        EXPECT_TRUE(seen.empty() || these == arrays);
        arrays = these;
        seen.push_back({v0[0], v0[1], v0[2], v1[0], v1[1], v1[2], v2[0], v2[1], v2[2]});
    });
    const Mesh expected = BoxMesh(0, 0, 0, 1, 2, 3);
    ASSERT_EQ(seen.size(), expected.size());
    for (std::size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ((std::array{seen[i].v0x, seen[i].v1y, seen[i].v2z, seen[i].v2x}),
                  (std::array{expected[i].v0x, expected[i].v1y, expected[i].v2z, expected[i].v2x}));
    }
    element.Dispose();
    element.Dispose();
    element.Load([](const auto&...) { FAIL() << "the triangles are gone"; });
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions
