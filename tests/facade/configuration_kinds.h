#pragma once

#include "configuration/native_collision_configuration_wrapper.h"
#include "configuration/native_proximity_configuration_wrapper.h"
#include "ostrel/quarrix/collision_configuration.h"
#include "ostrel/quarrix/proximity_configuration.h"
#include "support/foreign_classes.h"

#include "tarn/factory.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

/// What tests of the configurations of both kinds need to know of each.

namespace Ostrel::Quarrix::Collisions::test {

/// What a configuration is told of pairs. Collision configurations do not keep the clearance.
struct Said {
    bool enable;
    double clearance;
};

struct ProximityKind {
    using Configuration = IProximityConfiguration;
    using Wrapper = NativeProximityConfigurationWrapper;
    using Native = tarn::IProximityConfiguration;
    using NativeSetting = const tarn::ProximitySetting&;
    using NativePair = tarn::ProximityPair;
    using UnchangingNative = tarn::test::ForeignProximityConfiguration;
    static constexpr bool kHasClearances = true;

    static std::shared_ptr<Configuration> Make() { return std::make_shared<Wrapper>(); }
    static std::unique_ptr<Native> MakeNative() { return tarn::make_unique_proximity_configuration(); }
    /// The last arguments of an operation on pairs.
    static auto Arguments(const Said& said) {
        return std::tuple(std::make_shared<ProximitySetting>(said.enable, said.clearance));
    }
    static tarn::ProximitySetting NativeOf(const Said& said) { return {said.enable, said.clearance}; }
    static Said Answer(const std::shared_ptr<ProximitySetting>& setting) {
        return {setting->get_Enable(), setting->get_Clearance()};
    }
    static double ClearanceOf(const ProximityCouple& couple) {
        EXPECT_TRUE(couple.get_Setting()->get_Enable());
        return couple.get_Setting()->get_Clearance();
    }
    static bool Enables(const tarn::ProximitySetting& setting) { return setting.enable; }
};

/// Through the internal class.
struct CollisionKind {
    using Configuration = ICollisionConfiguration;
    using Wrapper = NativeCollisionConfigurationWrapper;
    using Native = tarn::ICollisionConfiguration;
    using NativeSetting = bool;
    using NativePair = tarn::CollisionPair;
    class UnchangingNative : public tarn::test::ForeignConfigurationOf<tarn::ICollisionConfiguration,
                                                                       bool,
                                                                       tarn::CollisionPair> {
    public:
        void EnableAllCouples() override {}
    };
    static constexpr bool kHasClearances = false;

    static std::shared_ptr<Configuration> Make() { return std::make_shared<Wrapper>(); }
    static std::unique_ptr<Native> MakeNative() { return tarn::make_unique_configuration(); }
    static auto Arguments(const Said& said) {
        using enum CheckCoupleConfiguration;
        // All but one switch a pair off; what the tolerance is does not matter.
        const CheckCoupleConfiguration off[]{None, AlmostCollision, AllowTouch};
        return std::tuple(said.enable ? Intersection : off[static_cast<int>(said.clearance) % 3],
                          said.clearance - 1.0);
    }
    static bool NativeOf(const Said& said) { return said.enable; }
    static Said Answer(bool enable) { return {enable, 0.0}; }
    static double ClearanceOf(const CollisionCouple& couple) {
        EXPECT_EQ(couple.get_CheckConfiguration(), CheckCoupleConfiguration::Intersection);
        return couple.get_Clearance();
    }
    static bool Enables(bool setting) { return setting; }
};

/// Through the class that callers construct.
struct PublicCollisionKind : CollisionKind {
    static std::shared_ptr<Configuration> Make() { return std::make_shared<CollisionConfiguration>(); }
};

struct KindNames {
    template <typename Kind>
    static std::string GetName(int) {
        if (Kind::kHasClearances) return "Proximity";
        return std::is_same_v<Kind, CollisionKind> ? "Collision" : "PublicCollision";
    }
};

/// Calls an operation, the arguments of a setting last.
template <typename Kind, typename Operation, typename... Given>
void Call(typename Kind::Configuration& configuration,
          Operation operation,
          const Said& said,
          const Given&... given) {
    std::apply([&](const auto&... all) { (configuration.*operation)(all...); },
               std::tuple_cat(std::tie(given...), Kind::Arguments(said)));
}

}  // namespace Ostrel::Quarrix::Collisions::test
