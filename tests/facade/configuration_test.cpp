#include "facade/configuration_kinds.h"
#include "facade/part.h"
#include "support/meshes.h"

#include "tarn/exception.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {
namespace {

using test::Call;
using test::ErrorOf;
using test::kDisposedError;
using test::MakeParts;
using test::NullError;
using test::Part;
using test::Said;

constexpr Said kOn{true, 1.0};
constexpr Said kOff{false, 2.0};
const std::string kCastError =
    "InvalidCastException: Can't cast 'configuration' parameter to internal class.";

/// What the engine was called with, and whether it fails.
struct Log {
    std::vector<std::string> calls;
    bool fails = false;

    std::string Take() {
        std::string all;
        for (const std::string& call : std::exchange(calls, {})) all += call + "; ";
        return all;
    }
};

/// An engine that only tells of what reaches it.
template <typename Kind>
class LoggingNative final : public Kind::UnchangingNative {
public:
    using Native = typename Kind::Native;
    using Setting = typename Kind::NativeSetting;

    explicit LoggingNative(Log& log) : log_(&log) {}

    using Kind::UnchangingNative::AddElement;
    void AddElement(tarn::ICollisionBody* body, Setting setting) override {
        Note("add " + body->GetName(), setting);
        if (log_->fails) throw tarn::RuntimeException("no room", "for it");
    }
    bool RemoveElement(tarn::ICollisionBody* body) override {
        log_->calls.push_back("remove " + body->GetName());
        return false;
    }
    std::vector<std::uint64_t> RetrieveOwners() const override { return {30, 0, 10, 20}; }
    void ConfigAllCouples(Setting setting) override { Note("all", setting); }
    void ConfigIntraOwner(std::uint64_t owner, Setting setting) override {
        Note("intra " + std::to_string(owner), setting);
    }
    void ConfigInterOwners(std::uint64_t owner1, std::uint64_t owner2, Setting setting) override {
        Note("inter " + std::to_string(owner1) + " " + std::to_string(owner2), setting);
    }
    std::remove_cvref_t<Setting> CoupleIsEnable(tarn::ICollisionBody*, tarn::ICollisionBody*) const override {
        if constexpr (Kind::kHasClearances) return {true, -1.0};
        return {};
    }
    [[nodiscard]] Native* Clone() const override { return std::make_unique<LoggingNative>(*log_).release(); }
    void MergeConfiguration(Native*, Setting setting, int merge_policy) override {
        Note("merge " + std::to_string(merge_policy), setting);
        if (log_->fails) throw std::bad_alloc();
    }
    void AppendDistinctConfiguration(Native*, int merge_policy) override {
        log_->calls.push_back("append " + std::to_string(merge_policy));
    }

private:
    void Note(const std::string& call, Setting setting) {
        log_->calls.push_back(call + (Kind::Enables(setting) ? " on" : " off"));
    }

    Log* log_;
};

template <typename Kind>
class ConfigurationTest : public test::RegistryTest<> {
protected:
    using Interface = typename Kind::Configuration;

    static void Add(Interface& c, const std::shared_ptr<Part>& part, const Said& said = kOn) {
        Call<Kind>(c, &Interface::AddElement, said, part);
    }
    std::shared_ptr<Interface> MakeLogging() {
        return std::make_shared<typename Kind::Wrapper>(std::make_unique<LoggingNative<Kind>>(log_));
    }
    std::string MergeError(Interface& c, const std::shared_ptr<Interface>& other) {
        return ErrorOf([&] {
            if constexpr (Kind::kHasClearances) {
                c.MergeConfiguration(other, std::make_shared<ProximitySetting>(),
                                     MergePolicy::RetainExisting);
            } else {
                Call<Kind>(c, &Interface::MergeConfiguration, kOn, other);
            }
        });
    }

    Log log_;
};

using Kinds = testing::Types<test::CollisionKind, test::ProximityKind>;
TYPED_TEST_SUITE(ConfigurationTest, Kinds, test::KindNames);

TYPED_TEST(ConfigurationTest, TestsDisposalFirstThenArgumentsInOrder) {
    using C = typename TypeParam::Configuration;
    const auto c = TypeParam::Make();
    const auto disposed = TypeParam::Make();
    disposed->Dispose();
    disposed->Dispose();
    const auto part = std::make_shared<Part>();
    const auto owner = std::make_shared<test::Owner>();
    const auto call = [](auto operation, auto... given) {
        return [=](C& x) { Call<TypeParam>(x, operation, kOn, given...); };
    };
    const test::Calls<C> calls{
        {call(&C::AddElement, nullptr), NullError("element")},
        {call(&C::AddElements, nullptr), NullError("elements")},
        {[](C& x) { x.RemoveElement(nullptr); }, NullError("element")},
        {[](C& x) { x.RemoveAllElements(); }, ""},
        {[](C& x) { x.AppendDistinctConfiguration(nullptr); }, NullError("configuration")},
        {[&](C& x) { x.AppendDistinctConfiguration(disposed); }, kDisposedError},
        {[](C& x) { x.Swap(nullptr); }, NullError("configuration")},
        {[&](C& x) { x.Swap(disposed); }, kDisposedError},
        {[](C& x) { (void)x.Clone(); }, ""},
        {[](C& x) { (void)x.CoupleIsEnable(nullptr, nullptr); }, NullError("element1")},
        {[&](C& x) { (void)x.CoupleIsEnable(part, nullptr); }, NullError("element2")},
        {[](C& x) { (void)x.RetrieveElements(); }, ""},
        {[](C& x) { (void)x.RetrieveCouples(); }, ""},
        {[](C& x) { (void)x.RetrieveCouplesCount(); }, ""},
        {call(&C::ConfigCouple, nullptr, nullptr), NullError("element1")},
        {call(&C::ConfigCouple, part, nullptr), NullError("element2")},
        {call(&C::ConfigOwnerAgainstAll, nullptr), ""},
        {call(&C::ConfigInterOwners, nullptr), NullError("ownersList")},
        {call(&C::ConfigIntraOwner, owner), ""},
        {[&](C& x) { x.DisableAllChecks(owner); }, ""},
        {[](C& x) { x.DisableAllChecks(); }, ""},
        {call(&C::EnableOwnerAgainstAllOnly, owner), ""},
        {call(&C::EnableInterOwnersOnly, nullptr), NullError("ownersList")},
        {call(&C::EnableIntraOwnerOnly, owner), ""}};
    test::ExpectErrors(*c, calls);
    test::ExpectAllDisposed(*disposed, calls);
    EXPECT_EQ(this->MergeError(*c, nullptr), NullError("configuration"));
    EXPECT_EQ(this->MergeError(*c, disposed), kDisposedError);
    EXPECT_EQ(this->MergeError(*disposed, nullptr), kDisposedError);
}

TYPED_TEST(ConfigurationTest, TellsTheEngineOfOwnersInOrder) {
    using Kind = TypeParam;
    using Configuration = typename Kind::Configuration;
    const auto c = this->MakeLogging();
    const auto a = std::make_shared<test::Owner>(10);
    const auto b = std::make_shared<test::Owner>(-1);
    const std::string big = "18446744073709551615";
    const std::vector<std::shared_ptr<Object>> owners{a, b, nullptr, a};
    Call<Kind>(*c, &Configuration::ConfigInterOwners, kOn, owners);
    EXPECT_EQ(this->log_.Take(), "inter 10 " + big + " on; inter 10 0 on; inter 10 10 on; inter " + big +
                                     " 0 on; inter " + big + " 10 on; inter 0 10 on; ");
    Call<Kind>(*c, &Configuration::EnableInterOwnersOnly, kOff, std::vector{a, b});
    EXPECT_EQ(this->log_.Take(), "all off; inter 10 " + big + " off; ");
    Call<Kind>(*c, &Configuration::ConfigOwnerAgainstAll, kOn, a);
    EXPECT_EQ(this->log_.Take(), "inter 10 30 on; inter 10 0 on; inter 10 20 on; ");
    Call<Kind>(*c, &Configuration::EnableOwnerAgainstAllOnly, kOff, nullptr);
    EXPECT_EQ(this->log_.Take(), "all off; inter 0 30 off; inter 0 10 off; inter 0 20 off; ");
    Call<Kind>(*c, &Configuration::ConfigIntraOwner, kOn, b);
    Call<Kind>(*c, &Configuration::EnableIntraOwnerOnly, kOn, nullptr);
    c->DisableAllChecks(b);
    c->DisableAllChecks();
    EXPECT_EQ(this->log_.Take(),
              "intra " + big + " on; all off; intra 0 on; intra " + big + " off; all off; ");

    const auto other = this->MakeLogging();
    EXPECT_EQ(this->MergeError(*c, other), "");
    EXPECT_EQ(this->log_.Take(), Kind::kHasClearances ? "merge 1 off; " : "merge 0 on; ");
    EXPECT_EQ(this->MergeError(*c, c), "");
    EXPECT_EQ(this->log_.Take(), "") << "nothing to merge";
    c->AppendDistinctConfiguration(c);
    EXPECT_EQ(this->log_.Take(), "append 0; ");

    this->Add(*other, std::make_shared<Part>());
    this->log_.fails = true;
    EXPECT_THROW(this->MergeError(*c, other), std::bad_alloc);
    EXPECT_TRUE(c->RetrieveElements().empty()) << "all or nothing";
    EXPECT_EQ(this->registry_.GetReferenceCount(other->RetrieveElements()[0]), 1);
}

TYPED_TEST(ConfigurationTest, TakesOneUseForAnElementAddedTwice) {
    using Kind = TypeParam;
    const auto c = this->MakeLogging();
    const auto parts = MakeParts(2);
    Call<Kind>(*c, &Kind::Configuration::AddElements, kOn, test::Parts{parts[0], parts[1], parts[0]});
    this->Add(*c, parts[1], kOff);
    EXPECT_EQ(this->log_.Take(), Kind::kHasClearances
                                     ? "add part 0 on; add part 1 on; add part 0 on; add part 1 off; "
                                     : "add part 0 on; add part 1 on; add part 1 off; ");
    EXPECT_EQ(this->registry_.Dump().substr(27), "\npart 0 [1]\npart 1 [1]\n");

    const std::string error = ErrorOf([&] {
        Call<Kind>(*c, &Kind::Configuration::AddElements, kOn,
                   test::Parts{std::make_shared<Part>("new"), nullptr, parts[0]});
    });
    EXPECT_EQ(error,
              NullError(Kind::kHasClearances ? "element"
                                             : "Got null ICollisionConfigurationElement in a enumeration."));
    EXPECT_EQ(this->log_.Take(), Kind::kHasClearances ? "add new on; " : "");
}

/// The entry stays, the use does not.
TYPED_TEST(ConfigurationTest, UndoesUsesWhereTheEngineFails) {
    using Kind = TypeParam;
    const std::string error = "InvalidOperationException: no room: for it";
    const auto failing = this->MakeLogging();
    const auto other = Kind::Make();
    const auto part = std::make_shared<Part>();
    const auto add = [&] { this->Add(*failing, part); };
    const auto uses = [&] { return this->registry_.GetReferenceCount(part); };

    // The body was made for it: it goes again, and takes the entry along.
    this->log_.fails = true;
    EXPECT_EQ(ErrorOf(add), error);
    EXPECT_EQ(uses(), 0);
    EXPECT_EQ(failing->RetrieveElements().size(), 1U);
    this->Add(*other, part);
    EXPECT_EQ(failing->RetrieveCouplesCount(), 0);
    EXPECT_TRUE(failing->RetrieveElements().empty());

    // The body is another's.
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(ErrorOf(add), error);
        EXPECT_EQ(uses(), 1);
        EXPECT_EQ(failing->RetrieveCouplesCount(), 0);
        EXPECT_EQ(failing->RetrieveElements().size(), 1U);
    }
    EXPECT_EQ((failing->Clone(), uses()), 2) << "the clone's, as long as it lives";
    EXPECT_EQ(uses(), 1);
    failing->RemoveElement(part);
    EXPECT_EQ(uses(), 1);
    EXPECT_EQ(ErrorOf(add), error);
    this->log_.fails = false;
    add();
    EXPECT_EQ(uses(), 2) << "makes up for the use";

    // It is there already.
    this->log_.fails = true;
    EXPECT_EQ(ErrorOf(add), error);
    EXPECT_EQ(uses(), 2);
    failing->RemoveAllElements();
    EXPECT_EQ(ErrorOf(add), error);
    other->Dispose();
    EXPECT_EQ(uses(), 0);

    const auto list = [&] {
        Call<Kind>(*failing, &Kind::Configuration::AddElements, kOn, test::Parts{part});
    };
    if constexpr (Kind::kHasClearances) {
        EXPECT_EQ(ErrorOf(list), error);
    } else {
        EXPECT_THROW(list(), tarn::RuntimeException);
    }
    // What the engine says while the body is made is translated, too.
    part->on_load = [] { throw tarn::RuntimeException("no mesh"); };
    failing->Dispose();
    EXPECT_EQ(ErrorOf([&] { this->Add(*Kind::Make(), part); }), "InvalidOperationException: no mesh");
}

TYPED_TEST(ConfigurationTest, TakesNoUseOfAnotherForABodyThatTheRegistryGaveUp) {
    const auto part = std::make_shared<Part>();
    std::vector<std::shared_ptr<typename TypeParam::Configuration>> stale{TypeParam::Make(),
                                                                          TypeParam::Make()};
    for (const auto& each : stale) this->Add(*each, part);
    this->registry_.Clear();
    const auto other = TypeParam::Make();
    this->Add(*other, part);
    stale[0]->Dispose();
    stale.push_back(stale[1]->Clone());
    stale[1]->RemoveAllElements();
    stale.clear();
    EXPECT_EQ(this->registry_.GetReferenceCount(part), 1);
}

/// Whoever destroys an element may wait for a thread that uses the registry, or dispose the configuration.
TYPED_TEST(ConfigurationTest, ReleasesElementsAfterTheOperationAndWithoutALock) {
    using Kind = TypeParam;
    using C = typename Kind::Configuration;
    const auto kept = std::make_shared<Part>();
    const auto other = Kind::Make();
    const auto call = [](auto operation, auto... given) {
        return [=](C& c) { Call<Kind>(c, operation, kOn, given...); };
    };
    // All but the first three are called when the registry has been cleared.
    const std::vector<std::function<void(C&)>> ways{
        [](C& c) { c.RemoveAllElements(); },
        [](C& c) { c.Dispose(); },
        [&](C& c) { this->registry_.Remove(c.RetrieveElements()[0]), c.DisableAllChecks(); },
        [](C& c) { c.RemoveAllElements(); },
        call(&C::AddElement, kept),
        call(&C::AddElements, test::Parts{kept}),
        [&](C& c) { c.RemoveElement(kept); },
        [&](C& c) { this->MergeError(c, other); },
        [&](C& c) { c.AppendDistinctConfiguration(other); },
        [&](C& c) { c.Swap(other); },
        [](C& c) { (void)c.Clone(); },
        [&](C& c) { (void)c.CoupleIsEnable(kept, kept); },
        [](C& c) { (void)c.RetrieveCouples(); },
        [](C& c) { (void)c.RetrieveCouplesCount(); },
        call(&C::ConfigCouple, kept, kept),
        call(&C::ConfigOwnerAgainstAll, nullptr),
        call(&C::ConfigInterOwners, std::vector{std::make_shared<test::Owner>()}),
        call(&C::ConfigIntraOwner, nullptr),
        [](C& c) { c.DisableAllChecks(nullptr); },
        call(&C::EnableOwnerAgainstAllOnly, nullptr)};
    for (const auto& way : ways) {
        const auto number = &way - ways.data();
        const auto c = Kind::Make();
        auto part = std::make_shared<Part>();
        int destroyed = 0;
        part->on_destruction = [&] {
            ++destroyed;
            auto count = std::async(std::launch::async, [&] { return this->registry_.GetElementsCount(); });
            EXPECT_EQ(count.wait_for(std::chrono::seconds(20)), std::future_status::ready);
            c->Dispose();
        };
        this->Add(*c, part);
        part.reset();
        if (number > 2) this->registry_.Clear();
        (void)ErrorOf([&] { way(*c); });
        EXPECT_EQ(destroyed, 1) << "way " << number;
        other->RemoveAllElements();
    }
}

TYPED_TEST(ConfigurationTest, StandsItsUseFromWithinAnElement) {
    using Kind = TypeParam;
    const auto c = Kind::Make();
    const auto parts = MakeParts(3);
    parts[0]->on_load = [&, done = false]() mutable {
        if (std::exchange(done, true)) return;
        this->Add(*c, parts[1]);
        this->Add(*c, parts[0]);
    };
    this->Add(*c, parts[0]);
    EXPECT_EQ(c->RetrieveElements().size(), 2U);
    EXPECT_EQ(c->RetrieveCouplesCount(), 1);
    EXPECT_EQ(this->registry_.GetReferenceCount(parts[0]), 1);
    parts[2]->on_load = [&] { c->Dispose(); };
    Call<Kind>(*c, &Kind::Configuration::AddElements, kOff, test::Parts{parts[2]});
    EXPECT_EQ(this->registry_.GetElementsCount(), 0U);
    EXPECT_EQ(ErrorOf([&] { (void)c->RetrieveElements(); }), kDisposedError);
}

TYPED_TEST(ConfigurationTest, AdoptsWhatCameBackFromAScene) {
    using Kind = TypeParam;
    using Wrapper = typename Kind::Wrapper;
    const auto native = Kind::MakeNative();
    EXPECT_EQ(ErrorOf([] { Wrapper(static_cast<typename Kind::Native*>(nullptr)); }),
              NullError("configuration"));
    const auto box = tarn::make_unique_element("box", tarn::test::BoxMesh(0, 0, 0, 1, 1, 1));
    const auto ball = tarn::make_unique_element("ball", tarn::test::BallMesh(1, 3));
    std::vector<std::unique_ptr<tarn::ICollisionBody>> bodies;
    for (const std::uint32_t id : {1U, 3U, 7U}) {
        bodies.push_back(tarn::make_unique_body(id, 5, "body " + std::to_string(id)));
        bodies.back()->AddElement(ball.get());
        bodies.back()->AddElement(box.get());
        bodies.back()->SetMatrix({{1, 0, 0, 25, 0, 1, 0, 5, 0, 0, 1, 7}});
        native->AddElement(bodies.back().get());
    }
    const auto couple = [&](std::size_t x, std::size_t y, double clearance) {
        native->ConfigCouple(bodies[x].get(), bodies[y].get(), Kind::NativeOf({true, clearance}));
    };
    couple(2, 0, 2.5);
    couple(1, 2, 0.5);
    const auto adopted = std::make_shared<Wrapper>(native.get());
    const auto elements = adopted->RetrieveElements();
    ASSERT_EQ(elements.size(), 3U);
    EXPECT_EQ(elements[1]->get_Position()[3], 0.0) << "placements are not stored";
    EXPECT_NE(elements[0]->get_Owner(), elements[1]->get_Owner());
    const auto& body = *this->registry_.Get(elements[1])->get_Body();
    EXPECT_EQ(body.GetStatistics().triangle_count, ball->GetTrianglesCount() + box->GetTrianglesCount());
    EXPECT_EQ(body.GetId(), static_cast<std::uint32_t>(elements[1]->GetHashCode()));
    EXPECT_EQ(this->registry_.GetReferenceCount(elements[1]), 1);
    std::string couples;
    for (const auto& each : adopted->RetrieveCouples()) {
        couples += each->get_Element1()->get_Name() + " " + each->get_Element2()->get_Name() + " " +
                   std::to_string(Kind::ClearanceOf(*each)) + "; ";
    }
    EXPECT_EQ(couples, Kind::kHasClearances ? "body 7 body 1 2.500000; body 3 body 7 0.500000; "
                                            : "body 7 body 1 0.000000; body 3 body 7 0.000000; ");
}

TEST(ProximityConfiguration, RefusesNullSettingsAfterAllElse) {
    const auto c = test::ProximityKind::Make();
    const auto part = std::make_shared<Part>();
    const auto other = std::make_shared<Part>();
    c->AddElements({part, other}, std::make_shared<ProximitySetting>(2.5));
    using C = IProximityConfiguration;
    const test::Calls<C> calls{
        {[](C& x) { x.AddElement(nullptr, nullptr); }, NullError("element")},
        {[&](C& x) { x.AddElement(part, nullptr); }, NullError("setting")},
        {[](C& x) { x.AddElements(nullptr, nullptr); }, NullError("elements")},
        {[](C& x) { x.AddElements({}, nullptr); }, NullError("setting")},
        {[](C& x) { x.MergeConfiguration(nullptr, nullptr, {}); }, NullError("configuration")},
        {[&](C& x) { x.MergeConfiguration(c, nullptr, {}); }, NullError("setting")},
        {[&](C& x) { x.ConfigCouple(part, nullptr, nullptr); }, NullError("element2")},
        {[&](C& x) { x.ConfigCouple(part, part, nullptr); }, NullError("setting")},
        {[](C& x) { x.ConfigOwnerAgainstAll(nullptr, nullptr); }, NullError("setting")},
        {[](C& x) { x.ConfigInterOwners(nullptr, nullptr); }, NullError("ownersList")},
        {[](C& x) { x.ConfigInterOwners({}, nullptr); }, NullError("setting")},
        {[](C& x) { x.ConfigIntraOwner(nullptr, nullptr); }, NullError("setting")},
        {[](C& x) { x.EnableOwnerAgainstAllOnly(nullptr, nullptr); }, NullError("setting")},
        {[](C& x) { x.EnableInterOwnersOnly(nullptr, nullptr); }, NullError("ownersList")},
        {[](C& x) { x.EnableInterOwnersOnly({}, nullptr); }, NullError("setting")},
        {[](C& x) { x.EnableIntraOwnerOnly(nullptr, nullptr); }, NullError("setting")}};
    test::ExpectErrors(*c, calls);
    EXPECT_EQ(c->CoupleIsEnable(part, other)->get_Clearance(), 2.5) << "arguments are tested first";
    EXPECT_FALSE(c->CoupleIsEnable(part, std::make_shared<Part>())->get_Enable());

    Log log;
    const NativeProximityConfigurationWrapper negative(
        std::make_unique<LoggingNative<test::ProximityKind>>(log));
    EXPECT_EQ(ErrorOf([&] { (void)negative.CoupleIsEnable(part, other); }),
              "ArgumentOutOfRangeException: Value can not be negative (parameter 'setting')");
}

TEST(CollisionConfigurations, OfTheTwoClassesDoNotMix) {
    const std::shared_ptr<ICollisionConfiguration> inner = test::CollisionKind::Make();
    const std::shared_ptr<ICollisionConfiguration> outer = std::make_shared<CollisionConfiguration>();
    const auto none = CheckCoupleConfiguration::None;
    for (const auto& each : {std::pair{inner, outer}, {outer, inner}, {outer, nullptr}}) {
        const auto& [c, other] = each;
        EXPECT_EQ(ErrorOf([&, &c = c, &other = other] { c->Swap(other); }), kCastError);
        EXPECT_EQ(ErrorOf([&, &c = c, &other = other] { c->AppendDistinctConfiguration(other); }),
                  kCastError);
        EXPECT_EQ(ErrorOf([&, &c = c, &other = other] { c->MergeConfiguration(other, none, 0.0); }),
                  kCastError);
    }
    EXPECT_EQ(ErrorOf([&] { inner->EnableAllAlmostCollisionChecks(1.0); }),
              "Exception: This method is post-poned");
    EXPECT_EQ(ErrorOf([&] { outer->EnableAllAlmostCollisionChecks(1.0); }),
              "NotImplementedException: This method is post-poned");
    EXPECT_NE(dynamic_cast<CollisionConfiguration*>(outer->Clone().get()), nullptr);
    const auto disposed = std::make_shared<CollisionConfiguration>();
    disposed->Dispose();
    test::ExpectDisposed([&] { outer->Swap(disposed); }, [&] { disposed->Swap(nullptr); },
                         [&] { disposed->EnableAllAlmostCollisionChecks(1.0); },
                         [&] { disposed->EnableAllIntersectChecks(true, 1.0); });
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions
