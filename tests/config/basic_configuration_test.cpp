#include "config/basic_configuration.h"

#include "config/collision_configuration.h"
#include "config/failing_allocation.h"
#include "config/proximity_configuration.h"
#include "core/collision_body.h"
#include "support/foreign_classes.h"
#include "support/placements.h"
#include "support/same_bits.h"

#include "tarn/exception.h"
#include "tarn/factory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tarn::details {
namespace {

using Bodies = std::vector<ICollisionBody*>;

/// What a call of either kind of configuration is told of couples.
struct AnySetting : ProximitySetting {
    operator bool() const { return enable; }
};

/// A couple of either kind, the clearance of a collision configuration's being 0. Equal to the last bit.
struct Couple {
    ICollisionBody* first;
    ICollisionBody* second;
    double clearance;

    bool operator==(const Couple& other) const { return test::SameBits(*this, other); }
};
using Couples = std::vector<Couple>;

std::uint64_t Key(const ICollisionBody* x, const ICollisionBody* y) {
    const auto [smaller, larger] = std::minmax({std::uint64_t{x->GetId()}, std::uint64_t{y->GetId()}});
    return smaller * 0x100000000U + larger;
}

auto IsOf(const ICollisionBody* x, const ICollisionBody* y) {
    return [key = Key(x, y)](const Couple& couple) { return Key(couple.first, couple.second) == key; };
}

/// Those of the couples that have a body with this one's identifier.
Couples CouplesWith(const ICollisionBody* body, const Couples& couples) {
    Couples found;
    std::ranges::copy_if(couples, std::back_inserter(found), [id = body->GetId()](const Couple& couple) {
        return couple.first->GetId() == id || couple.second->GetId() == id;
    });
    return found;
}

/// The rules of a configuration of either kind written down one by one, on plain lists. What leaves a list
/// leaves its place to the last one.
class Model {
public:
    struct Owner {
        std::uint64_t id;
        Bodies bodies;
    };
    Bodies bodies;
    std::vector<Owner> owners;
    Couples couples;

    bool Has(const ICollisionBody* body) const { return std::ranges::count(bodies, body) > 0; }
    ProximitySetting CoupleIsEnable(const ICollisionBody* x, const ICollisionBody* y) const {
        const auto found = std::ranges::find_if(couples, IsOf(x, y));
        if (found == couples.end()) return {false, 0.0};
        if (found->clearance < 0.0) throw InvalidArgumentException();
        return {true, found->clearance};
    }

    void AddElement(ICollisionBody* body) {
        PutInto(bodies, body);
        PutInto(OwnerOf(body->GetOwner()), body);
    }
    void AddElement(ICollisionBody* body, const AnySetting& setting) {
        const bool was_present = Has(body);
        if (was_present || setting) SetAgainst(body, bodies, setting);
        if (!was_present) return AddElement(body);
        Set(body, body, {});
    }
    bool RemoveElement(ICollisionBody* body) {
        if (!Has(body)) return false;
        const std::uint32_t id = body->GetId();
        for (std::size_t i = 0; i < couples.size();) {
            const auto [x, y, clearance] = couples[i];
            if ((id & x->GetId()) != id && (id & y->GetId()) != id) {
                ++i;
            } else {
                TakeFrom(couples, couples[i]);
            }
        }
        for (Owner& owner : owners) TakeFrom(owner.bodies, body);
        TakeFrom(bodies, body);
        return true;
    }
    void RemoveAllElements() { *this = Model(); }
    void EnableAllCouples() {
        couples.clear();
        SetAmong(bodies, {true, 0.0});
    }
    void ConfigCouple(ICollisionBody* x, ICollisionBody* y, const AnySetting& setting) {
        if (setting.clearance < 0.0) throw InvalidArgumentException();
        if (!setting || (Has(x) && Has(y))) Set(x, y, setting);
    }
    void ConfigElementAgainstAll(ICollisionBody* body, const AnySetting& setting) {
        Bodies others = bodies;
        if (std::erase(others, body) > 0) SetAgainst(body, others, setting);
    }
    void ConfigAllCouples(const AnySetting& setting) {
        if (!setting) couples.clear();
        SetAmong(bodies, setting);
    }
    void ConfigIntraOwner(std::uint64_t id, const AnySetting& setting) {
        if (const Owner* owner = Find(id)) SetAmong(owner->bodies, setting);
    }
    void ConfigInterOwners(std::uint64_t id1, std::uint64_t id2, const AnySetting& setting) {
        if (!Find(id1) || !Find(id2)) return;
        for (ICollisionBody* x : Find(id1)->bodies) SetAgainst(x, Find(id2)->bodies, setting);
    }
    void AppendDistinctConfiguration(Model* other, int) {
        if (other == this) return;
        for (ICollisionBody* body : other->bodies) PutInto(bodies, body);
        for (const Owner& owner : other->owners) {
            for (ICollisionBody* body : owner.bodies) PutInto(OwnerOf(owner.id), body);
            OwnerOf(owner.id);
        }
        for (const Couple& couple : other->couples) {
            if (std::ranges::none_of(couples, IsOf(couple.first, couple.second))) couples.push_back(couple);
        }
    }
    void MergeConfiguration(Model* other, const AnySetting& setting, int) {
        const Bodies present = bodies;
        AppendDistinctConfiguration(other, 0);
        for (ICollisionBody* body : other->bodies) {
            if (std::ranges::count(present, body) == 0) SetAgainst(body, present, setting);
        }
    }

private:
    static void PutInto(Bodies& set, ICollisionBody* body) {
        if (std::ranges::count(set, body) == 0) set.push_back(body);
    }
    template <typename Entry>
    static void TakeFrom(std::vector<Entry>& set, Entry entry) {
        const auto found = std::ranges::find(set, entry);
        if (found == set.end()) return;
        *found = set.back();
        set.pop_back();
    }
    const Owner* Find(std::uint64_t id) const {
        const auto found = std::ranges::find(owners, id, &Owner::id);
        return found == owners.end() ? nullptr : &*found;
    }
    Bodies& OwnerOf(std::uint64_t id) {
        if (!Find(id)) owners.push_back({id, {}});
        return std::ranges::find(owners, id, &Owner::id)->bodies;
    }
    void Set(ICollisionBody* x, ICollisionBody* y, const AnySetting& setting) {
        const auto found = std::ranges::find_if(couples, IsOf(x, y));
        if (found == couples.end()) {
            if (setting) couples.push_back({x, y, setting.clearance});
        } else if (setting) {
            found->clearance = setting.clearance;
        } else {
            TakeFrom(couples, *found);
        }
    }
    void SetAgainst(ICollisionBody* x, const Bodies& set, const AnySetting& setting) {
        for (ICollisionBody* y : set) Set(x, y, setting);
    }
    void SetAmong(const Bodies& set, const AnySetting& setting) {
        for (std::size_t i = 0; i < set.size(); ++i) {
            for (std::size_t j = i + 1; j < set.size(); ++j) Set(set[i], set[j], setting);
        }
    }
};

/// What the tests need to know of a kind of configuration.
struct Collision {
    using Interface = ICollisionConfiguration;
    using Own = CollisionConfiguration;
    using Foreign = test::ForeignConfiguration;
    using Record = CollisionPair;
    static constexpr bool kHasClearances = false;
    static constexpr const char* kName = "CollisionConfiguration";

    static std::unique_ptr<Interface> Make() { return make_unique_configuration(); }
    static Couple CoupleOf(const Record& record) { return {record.First, record.Second, 0.0}; }
};
struct Proximity {
    using Interface = IProximityConfiguration;
    using Own = ProximityConfiguration;
    using Foreign = test::ForeignProximityConfiguration;
    using Record = ProximityPair;
    static constexpr bool kHasClearances = true;
    static constexpr const char* kName = "ProximityConfiguration";

    static std::unique_ptr<Interface> Make() { return make_unique_proximity_configuration(); }
    static Couple CoupleOf(const Record& record) { return {record.First, record.Second, record.Clearance}; }
};

struct Call {
    std::size_t kind;
    ICollisionBody* x;
    ICollisionBody* y;
    std::uint64_t owner1;
    std::uint64_t owner2;
    AnySetting setting;
};

enum class Answer { No, Yes, Refused };

template <typename Kind>
class BasicConfigurationTest : public testing::Test {
protected:
    using Interface = typename Kind::Interface;
    using Record = typename Kind::Record;

    typename Kind::Own configuration_;
    std::vector<std::unique_ptr<CollisionBody>> owned_;
    Bodies bodies_;

    /// Adds bodies with identifiers from `first_id` on, under so many owners in turn.
    void AddBodies(std::uint32_t count, std::uint32_t first_id, std::uint32_t owner_count) {
        for (std::uint32_t i = 0; i < count; ++i) {
            owned_.push_back(std::make_unique<CollisionBody>(first_id + i, i % owner_count, "body"));
            bodies_.push_back(owned_.back().get());
            configuration_.AddElement(bodies_.back());
        }
    }

    static Couples CouplesOf(const std::vector<Record>& records) {
        Couples couples;
        std::ranges::transform(records, std::back_inserter(couples), Kind::CoupleOf);
        return couples;
    }
    static Couples CouplesOf(const Interface& configuration) {
        std::vector<Record> records(3);
        return CouplesOf(configuration.RetrieveCouples(records));
    }

    /// Enabled and the clearance, or what refuses to tell it.
    template <typename Configuration>
    static std::pair<Answer, double> StateOf(const Configuration& configuration,
                                             ICollisionBody* x,
                                             ICollisionBody* y) {
        try {
            const ProximitySetting setting = AsSetting(configuration.CoupleIsEnable(x, y));
            return {setting.enable ? Answer::Yes : Answer::No, setting.clearance};
        } catch (const InvalidArgumentException&) {
            return {Answer::Refused, 0.0};
        }
    }

    /// Lists in the very order of the model: so it does not depend on where the bodies lie in memory.
    static void ExpectFollows(const Interface& configuration, const Model& model, const Bodies& all_bodies) {
        ASSERT_TRUE(dynamic_cast<const typename Kind::Own&>(configuration).IsConsistent());
        ASSERT_EQ(configuration.RetrieveElements(), model.bodies);
        std::vector<std::uint64_t> owners;
        for (const Model::Owner& owner : model.owners) owners.push_back(owner.id);
        ASSERT_EQ(configuration.RetrieveOwners(), owners);
        ASSERT_EQ(configuration.RetrieveCouplesCount(), model.couples.size());
        ASSERT_EQ(CouplesOf(configuration), model.couples);
        for (ICollisionBody* body : all_bodies) {
            std::vector<Record> of_body(2);
            ASSERT_EQ(CouplesOf(configuration.RetrieveCouples(of_body, body)),
                      CouplesWith(body, model.couples));
            for (ICollisionBody* other : all_bodies) {
                const auto [answer, clearance] = StateOf(configuration, body, other);
                const auto [expected_answer, expected_clearance] = StateOf(model, body, other);
                ASSERT_EQ(answer, expected_answer);
                ASSERT_TRUE(test::SameBits(clearance, expected_clearance));
            }
        }
    }

    /// One call, on a configuration or on a model.
    template <typename Configuration>
    static Answer Apply(const Call& call, Configuration& to, Configuration& other) {
        const auto& [kind, x, y, owner1, owner2, setting] = call;
        const auto merge_policy = static_cast<int>(owner1);
        try {
            if (kind < 4) to.AddElement(x, setting);
            if (kind == 4 || kind == 5) to.AddElement(x);
            if (kind == 6 || kind == 7) return to.RemoveElement(x) ? Answer::Yes : Answer::No;
            if (kind == 8 && owner1 == owner2) to.RemoveAllElements();
            if constexpr (!Kind::kHasClearances) {
                if (kind == 9) to.EnableAllCouples();
            }
            if (kind == 10 || kind == 11) to.ConfigCouple(x, y, setting);
            if (kind == 12) to.ConfigElementAgainstAll(x, setting);
            if (kind == 13) to.ConfigAllCouples(setting);
            if (kind == 14) to.ConfigIntraOwner(owner1, setting);
            if (kind == 15) to.ConfigInterOwners(owner1, owner2, setting);
            if (kind == 16) to.AppendDistinctConfiguration(owner2 == 0 ? &to : &other, merge_policy);
            if (kind == 17) to.MergeConfiguration(owner2 == 0 ? &to : &other, setting, merge_policy);
        } catch (const InvalidArgumentException&) {
            return Answer::Refused;
        }
        return Answer::Yes;
    }

private:
    static ProximitySetting AsSetting(bool enable) { return {enable, 0.0}; }
    static ProximitySetting AsSetting(const ProximitySetting& setting) { return setting; }
};

struct KindNames {
    template <typename Kind>
    static std::string GetName(int) {
        return Kind::kName;
    }
};
using Kinds = testing::Types<Collision, Proximity>;
TYPED_TEST_SUITE(BasicConfigurationTest, Kinds, KindNames);

/// Properties: after any calls a configuration lists what the rules say, in their order; a call for which
/// memory runs out leaves it as it was.
TYPED_TEST(BasicConfigurationTest, FollowsTheRulesUnderAnyCalls) {
    constexpr double kClearances[]{0.0, -0.0, 2.0, 5.0, -0.5, std::numeric_limits<double>::quiet_NaN()};
    std::mt19937_64 random(1);
    const auto below = [&](std::size_t bound) { return static_cast<std::size_t>(random() % bound); };
    for (int sequence = 0; sequence < 120; ++sequence) {
        SCOPED_TRACE(sequence);
        // Shared identifiers, 0, and identifiers whose bits others contain.
        std::vector<std::unique_ptr<CollisionBody>> owned;
        Bodies bodies;
        for (const std::uint32_t id : {1U, 2U, 3U, 3U, 5U, 6U, 7U, 8U, 12U, 0U, 0x80000000U}) {
            owned.push_back(std::make_unique<CollisionBody>(id, bodies.size() % 3, "body"));
            bodies.push_back(owned.back().get());
        }
        std::array configurations{TypeParam::Make(), TypeParam::Make()};
        Model models[2];
        const auto body = [&] { return bodies[below(bodies.size())]; };
        for (int i = 0; i < 100; ++i) {
            const double clearance = TypeParam::kHasClearances ? kClearances[below(6)] : 0.0;
            const Call call{below(20), body(), body(), below(4), below(4), {{below(3) > 0, clearance}}};
            SCOPED_TRACE(testing::Message() << "call " << i << " of kind " << call.kind);
            const std::size_t which = below(2);
            auto& real = configurations[which];
            auto& other = *configurations[1 - which];
            if (call.kind == 18) call.x->SetOwner(call.owner1);
            if (call.kind == 19) real.reset(real->Clone());
            Answer answer{};
            for (int allocations = 0;
                 test::RunsOutOfMemory(allocations, [&] { answer = this->Apply(call, *real, other); });
                 ++allocations) {
                ASSERT_NO_FATAL_FAILURE(this->ExpectFollows(*real, models[which], bodies)) << allocations;
            }
            ASSERT_EQ(answer, this->Apply(call, models[which], models[1 - which]));
            for (const std::size_t k : {0U, 1U})
                ASSERT_NO_FATAL_FAILURE(this->ExpectFollows(*configurations[k], models[k], bodies));
        }
    }
}

TYPED_TEST(BasicConfigurationTest, RefusesWhatItCannotUseBeforeAnyChange) {
    this->AddBodies(3, 1, 3);
    auto& c = this->configuration_;
    const AnySetting on{{true, 1.5}};
    const AnySetting off{{false, 1.5}};
    c.ConfigAllCouples(on);
    const Couples before = this->CouplesOf(c);
    ICollisionBody* one = this->bodies_[0];
    test::ForeignBody foreign(2);
    typename TypeParam::Foreign foreign_configuration;
    std::vector<typename TypeParam::Record> out(5);
    const std::string foreign_class = std::string("BadCastException: Could not recognize I") +
                                      TypeParam::kName + " as its internal implementation class (" +
                                      TypeParam::kName + ")";
    std::vector<std::pair<std::string, std::vector<std::function<void()>>>> refused{
        {"NullPointerException",
         {[&] { c.AddElement(nullptr); }, [&] { c.AddElement(nullptr, on); },
          [&] { c.AddElement(nullptr, off); }, [&] { c.RemoveElement(nullptr); },
          [&] { c.ConfigCouple(one, nullptr, on); }, [&] { c.ConfigCouple(nullptr, one, off); },
          [&] { c.ConfigElementAgainstAll(nullptr, off); }, [&] { (void)c.CoupleIsEnable(one, nullptr); },
          [&] { (void)c.CoupleIsEnable(nullptr, one); }, [&] { c.RetrieveCouples(out, nullptr); },
          [&] { c.MergeConfiguration(nullptr, on, 0); }, [&] { c.AppendDistinctConfiguration(nullptr, 0); }}},
        {"BadCastException: Could not recognize ICollisionBody as its internal implementation class "
         "(CollisionBody)",
         {[&] { c.AddElement(&foreign); }, [&] { c.AddElement(&foreign, on); },
          [&] { c.AddElement(&foreign, off); }}},
        {foreign_class,
         {[&] { c.MergeConfiguration(&foreign_configuration, on, 0); },
          [&] { c.AppendDistinctConfiguration(&foreign_configuration, 0); }}}};
    if constexpr (TypeParam::kHasClearances) {
        static constexpr ProximitySetting below{true, -std::numeric_limits<double>::denorm_min()};
        refused[0].second.push_back([&] { c.ConfigCouple(one, nullptr, below); });
        refused.push_back(
            {"InvalidArgumentException: Parameter can't be negative: clearance",
             {[&] { c.ConfigCouple(one, one, below); }, [&] { c.ConfigCouple(&foreign, one, below); },
              [&] {
                  c.ConfigCouple(one, one, ProximitySetting{false, -1.0});
              }}});
    }
    for (const auto& [text, calls] : refused) {
        for (const auto& call : calls) {
            std::string thrown;
            try {
                call();
            } catch (const Exception& exception) {
                thrown = exception.displayText();
            }
            EXPECT_EQ(thrown, text) << "call " << &call - &calls[0];
            EXPECT_EQ(c.RetrieveElements(), this->bodies_);
            EXPECT_EQ(this->CouplesOf(c), before);
        }
    }
    EXPECT_EQ(out.size(), 5U) << "the caller's vector stays as it was";

    // Elsewhere a foreign body is an absent one, known by its identifier where that is all that counts.
    const auto is_enabled = [&](ICollisionBody* body) {
        return this->StateOf(c, body, one).first == Answer::Yes;
    };
    EXPECT_FALSE(c.RemoveElement(&foreign));
    c.ConfigElementAgainstAll(&foreign, off);
    EXPECT_EQ(this->CouplesOf(c), before);
    EXPECT_TRUE(is_enabled(&foreign));
    EXPECT_EQ(c.RetrieveCouples(out, &foreign).size(), 2U);
    c.ConfigCouple(&foreign, one, off);
    EXPECT_FALSE(is_enabled(this->bodies_[1]));
    c.ConfigCouple(&foreign, one, on);
    EXPECT_FALSE(is_enabled(this->bodies_[1])) << "both bodies must be present";
}

/// More couples than one batch of a bulk change holds, new and present ones mixed.
TYPED_TEST(BasicConfigurationTest, KeepsTheOrderOfManyCouples) {
    this->AddBodies(70, 0, 1);
    auto& configuration = this->configuration_;
    Model model;
    for (ICollisionBody* body : this->bodies_) model.AddElement(body);
    double clearance = 0.0;
    for (const auto& [kind, enable] : {std::pair{std::size_t{9}, true},
                                       {13U, true},
                                       {15U, true},
                                       {14U, false},
                                       {15U, false},
                                       {13U, true}}) {
        if (TypeParam::kHasClearances) clearance += 1.0;
        const Call call{kind, nullptr, nullptr, 0, 0, {{enable, clearance}}};
        ASSERT_EQ(this->Apply(call, configuration, configuration), this->Apply(call, model, model));
        ASSERT_EQ(this->CouplesOf(configuration), model.couples) << "kind " << kind;
    }
}

/// More bodies and couples than one task of the parallel loops takes.
TYPED_TEST(BasicConfigurationTest, CollectsAndUpdatesInManyTasks) {
    this->AddBodies(2500, 1000, 30);
    auto& configuration = this->configuration_;
    for (const auto& body : this->owned_) body->SetMatrix(test::Translation(body->GetId(), 0, 0));
    configuration.UpdateBodies();
    for (const auto& body : this->owned_) ASSERT_EQ(body->CurrentMatrix()[3], body->GetId());

    for (std::uint64_t owner = 0; owner < 30; ++owner)
        configuration.ConfigInterOwners(owner, 7, AnySetting{{true, 0.0}});
    ICollisionBody* const seven = this->bodies_[7];
    const Couples expected = CouplesWith(seven, this->CouplesOf(configuration));
    EXPECT_EQ(expected.size(), 2500U) << "with itself, too";
    std::vector<typename TypeParam::Record> out;
    for (int round = 0; round < 200; ++round) {
        ASSERT_EQ(this->CouplesOf(configuration.RetrieveCouples(out, seven)), expected)
            << "in the order of all couples, whichever thread found them";
    }
}

}  // namespace
}  // namespace tarn::details
