#include "configuration/native_collision_configuration_wrapper.h"
#include "facade/part.h"
#include "registry/elements_manager.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>

namespace Ostrel::Quarrix::Collisions {
namespace {

using test::Part;

TEST(DebugInfo, CountsRegistries) {
    EXPECT_EQ(DebugInfo().ToString(), ": count: 0, deleted:0, disposed:0");
    EXPECT_EQ((DebugInfo{"7", 8, 18'446'744'073'709'551'615U, 2}.ToString()),
              "7: count: 8, deleted:18446744073709551615, disposed:2");
}

TEST(DisposedRegistry, KeepsItsPublicOperations) {
    ElementsManager& registry = ElementsManager::get_Instance();
    EXPECT_EQ(ElementsManager::get_DebugInfo().ToString(), "0: count: 1, deleted:0, disposed:0");
    const auto configuration = std::make_shared<NativeCollisionConfigurationWrapper>();
    const auto part = std::make_shared<Part>("A");
    // The last reference to this one goes with the registry's; by then no lock is held.
    std::weak_ptr<Part> forgotten;
    {
        const auto orphan = std::make_shared<Part>("B");
        orphan->on_destruction = [&registry] {
            EXPECT_EQ(std::async([&registry] { return registry.GetElementsCount(); }).get(), 0U);
            registry.Dispose();
        };
        registry.Add(orphan);
        forgotten = orphan;
    }
    configuration->AddElement(part, CheckCoupleConfiguration::Intersection, 0.0);
    const auto wrapper = registry.Get(part);
    registry.Dispose();
    EXPECT_TRUE(forgotten.expired());
    EXPECT_TRUE(wrapper->IsDisposed());
    EXPECT_EQ(ElementsManager::get_DebugInfo().ToString(), ": count: 1, deleted:2, disposed:2");
    registry.Dispose();
    EXPECT_EQ(ElementsManager::get_DebugInfo().ToString(), ": count: 1, deleted:3, disposed:3");
    EXPECT_EQ(&ElementsManager::get_Instance(), &registry);
    EXPECT_EQ(ElementsManager::get_DebugInfo().new_count, 1U);

    test::ExpectDisposed([&] { registry.IncreaseReferenceCount(*wrapper); },
                         [&] { registry.DecreaseReferenceCount(*wrapper); },
                         [&] { (void)registry.GetReferenceCount(part); },
                         [&] { (void)registry.CheckElementsExist({part}); },
                         [&] { (void)registry.GetElementsExist({part}); }, [&] { (void)registry.Dump(); });

    EXPECT_EQ(configuration->RetrieveCouplesCount(), 0);
    EXPECT_TRUE(configuration->RetrieveElements().empty());
    configuration->AddElement(part, CheckCoupleConfiguration::Intersection, 0.0);
    EXPECT_EQ(registry.GetElementsCount(), 1U);
    EXPECT_NE(registry.Get(part), wrapper);
    EXPECT_TRUE(registry.IncreaseReferenceCount(part));
    EXPECT_TRUE(registry.DecreaseReferenceCount(part));
    configuration->Dispose();
    EXPECT_EQ(registry.GetElementsCount(), 0U);
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions
