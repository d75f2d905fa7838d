#include "config/collision_configuration.h"

#include "config/failing_allocation.h"
#include "core/collision_body.h"
#include "support/foreign_classes.h"
#include "support/placements.h"

#include "tarn/exception.h"
#include "tarn/factory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarn::details {
namespace {

using Bodies = std::vector<ICollisionBody*>;
using Couple = std::pair<ICollisionBody*, ICollisionBody*>;
using Couples = std::vector<Couple>;

std::uint64_t Key(const ICollisionBody* x, const ICollisionBody* y) {
    const auto [smaller, larger] = std::minmax({std::uint64_t{x->GetId()}, std::uint64_t{y->GetId()}});
    return smaller * 0x100000000U + larger;
}

/// The rules of a configuration written down one by one, on plain lists. What leaves a list leaves its place
/// to the last one.
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
    bool CoupleIsEnable(const ICollisionBody* x, const ICollisionBody* y) const {
        return std::ranges::any_of(couples,
                                   [&](const Couple& c) { return Key(c.first, c.second) == Key(x, y); });
    }

    void AddElement(ICollisionBody* body) {
        PutInto(bodies, body);
        PutInto(OwnerOf(body->GetOwner()), body);
    }
    void AddElement(ICollisionBody* body, bool enable) {
        const bool was_present = Has(body);
        if (was_present || enable) SetAgainst(body, bodies, enable);
        if (!was_present) return AddElement(body);
        Set(body, body, false);
    }
    bool RemoveElement(ICollisionBody* body) {
        if (!Has(body)) return false;
        const std::uint32_t id = body->GetId();
        for (std::size_t i = 0; i < couples.size();) {
            const auto [x, y] = couples[i];
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
        SetAmong(bodies, true);
    }
    void ConfigCouple(ICollisionBody* x, ICollisionBody* y, bool enable) {
        if (!enable || (Has(x) && Has(y))) Set(x, y, enable);
    }
    void ConfigElementAgainstAll(ICollisionBody* body, bool enable) {
        Bodies others = bodies;
        if (std::erase(others, body) > 0) SetAgainst(body, others, enable);
    }
    void ConfigAllCouples(bool enable) {
        if (!enable) couples.clear();
        SetAmong(bodies, enable);
    }
    void ConfigIntraOwner(std::uint64_t id, bool enable) {
        if (const Owner* owner = Find(id)) SetAmong(owner->bodies, enable);
    }
    void ConfigInterOwners(std::uint64_t id1, std::uint64_t id2, bool enable) {
        if (!Find(id1) || !Find(id2)) return;
        for (ICollisionBody* x : Find(id1)->bodies) SetAgainst(x, Find(id2)->bodies, enable);
    }
    void AppendDistinctConfiguration(Model* other, int) {
        if (other == this) return;
        for (ICollisionBody* body : other->bodies) PutInto(bodies, body);
        for (const Owner& owner : other->owners) {
            for (ICollisionBody* body : owner.bodies) PutInto(OwnerOf(owner.id), body);
            OwnerOf(owner.id);
        }
        for (const auto& [x, y] : other->couples) Set(x, y, true);
    }
    void MergeConfiguration(Model* other, bool enable, int) {
        const Bodies present = bodies;
        AppendDistinctConfiguration(other, 0);
        for (ICollisionBody* body : other->bodies) {
            if (std::ranges::count(present, body) == 0) SetAgainst(body, present, enable);
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
    void Set(ICollisionBody* x, ICollisionBody* y, bool enable) {
        const auto found = std::ranges::find_if(
            couples, [&](const Couple& c) { return Key(c.first, c.second) == Key(x, y); });
        if (enable && found == couples.end()) couples.emplace_back(x, y);
        if (!enable && found != couples.end()) TakeFrom(couples, *found);
    }
    void SetAgainst(ICollisionBody* x, const Bodies& set, bool enable) {
        for (ICollisionBody* y : set) Set(x, y, enable);
    }
    void SetAmong(const Bodies& set, bool enable) {
        for (std::size_t i = 0; i < set.size(); ++i) {
            for (std::size_t j = i + 1; j < set.size(); ++j) Set(set[i], set[j], enable);
        }
    }
};

Couples CouplesOf(const std::vector<CollisionPair>& pairs) {
    Couples couples;
    for (const CollisionPair& pair : pairs) couples.emplace_back(pair.First, pair.Second);
    return couples;
}

Couples CouplesOf(const ICollisionConfiguration& configuration) {
    std::vector<CollisionPair> pairs(3);
    return CouplesOf(configuration.RetrieveCouples(pairs));
}

/// Lists in the very order of the model: so it does not depend on where the bodies lie in memory.
void ExpectFollows(const ICollisionConfiguration& configuration,
                   const Model& model,
                   const Bodies& all_bodies) {
    ASSERT_TRUE(dynamic_cast<const CollisionConfiguration&>(configuration).IsConsistent());
    ASSERT_EQ(configuration.RetrieveElements(), model.bodies);
    std::vector<std::uint64_t> owners;
    for (const Model::Owner& owner : model.owners) owners.push_back(owner.id);
    ASSERT_EQ(configuration.RetrieveOwners(), owners);
    ASSERT_EQ(configuration.RetrieveCouplesCount(), model.couples.size());
    ASSERT_EQ(CouplesOf(configuration), model.couples);
    for (ICollisionBody* body : all_bodies) {
        Couples expected;
        std::ranges::copy_if(model.couples, std::back_inserter(expected), [body](const Couple& couple) {
            return couple.first->GetId() == body->GetId() || couple.second->GetId() == body->GetId();
        });
        std::vector<CollisionPair> of_body(2);
        ASSERT_EQ(CouplesOf(configuration.RetrieveCouples(of_body, body)), expected);
        for (ICollisionBody* other : all_bodies)
            ASSERT_EQ(configuration.CoupleIsEnable(body, other), model.CoupleIsEnable(body, other));
    }
}

struct Call {
    std::size_t kind;
    ICollisionBody* x;
    ICollisionBody* y;
    std::uint64_t owner1;
    std::uint64_t owner2;
    bool enable;
};

/// One call, on a configuration or on a model. Returns what the call returns.
template <typename Configuration>
bool Apply(const Call& call, Configuration& to, Configuration& other) {
    const auto& [kind, x, y, owner1, owner2, enable] = call;
    const auto merge_policy = static_cast<int>(owner1);
    if (kind < 4) to.AddElement(x, enable);
    if (kind == 4 || kind == 5) to.AddElement(x);
    if (kind == 6 || kind == 7) return to.RemoveElement(x);
    if (kind == 8 && owner1 == owner2) to.RemoveAllElements();
    if (kind == 9) to.EnableAllCouples();
    if (kind == 10 || kind == 11) to.ConfigCouple(x, y, enable);
    if (kind == 12) to.ConfigElementAgainstAll(x, enable);
    if (kind == 13) to.ConfigAllCouples(enable);
    if (kind == 14) to.ConfigIntraOwner(owner1, enable);
    if (kind == 15) to.ConfigInterOwners(owner1, owner2, enable);
    if (kind == 16) to.AppendDistinctConfiguration(owner2 == 0 ? &to : &other, merge_policy);
    if (kind == 17) to.MergeConfiguration(owner2 == 0 ? &to : &other, enable, merge_policy);
    return true;
}

/// Properties: after any calls a configuration lists what the rules say, in their order; a call for which
/// memory runs out leaves it as it was.
TEST(CollisionConfiguration, FollowsTheRulesUnderAnyCalls) {
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
        std::unique_ptr<ICollisionConfiguration> configurations[2]{make_unique_configuration(),
                                                                   make_unique_configuration()};
        Model models[2];
        const auto body = [&] { return bodies[below(bodies.size())]; };
        for (int i = 0; i < 100; ++i) {
            const Call call{below(20), body(), body(), below(4), below(4), below(3) > 0};
            SCOPED_TRACE(testing::Message() << "call " << i << " of kind " << call.kind);
            const std::size_t which = below(2);
            std::unique_ptr<ICollisionConfiguration>& real = configurations[which];
            ICollisionConfiguration& other = *configurations[1 - which];
            if (call.kind == 18) call.x->SetOwner(call.owner1);
            if (call.kind == 19) real.reset(real->Clone());
            bool result = false;
            for (int allocations = 0;
                 test::RunsOutOfMemory(allocations, [&] { result = Apply(call, *real, other); });
                 ++allocations) {
                ASSERT_NO_FATAL_FAILURE(ExpectFollows(*real, models[which], bodies)) << allocations;
            }
            ASSERT_EQ(result, Apply(call, models[which], models[1 - which]));
            for (const std::size_t k : {0U, 1U})
                ASSERT_NO_FATAL_FAILURE(ExpectFollows(*configurations[k], models[k], bodies));
        }
    }
}

class CollisionConfigurationTest : public testing::Test {
protected:
    CollisionConfiguration configuration_;
    std::vector<std::unique_ptr<CollisionBody>> owned_;
    Bodies bodies_;

    /// Bodies with identifiers from `first_id` on, under so many owners in turn.
    void AddBodies(std::uint32_t count, std::uint32_t first_id, std::uint32_t owner_count) {
        for (std::uint32_t i = 0; i < count; ++i) {
            owned_.push_back(std::make_unique<CollisionBody>(first_id + i, i % owner_count, "body"));
            bodies_.push_back(owned_.back().get());
            configuration_.AddElement(bodies_.back());
        }
    }
};

TEST_F(CollisionConfigurationTest, RefusesWhatItCannotUseBeforeAnyChange) {
    AddBodies(3, 1, 3);
    CollisionConfiguration& c = configuration_;
    c.EnableAllCouples();
    const Couples before = CouplesOf(c);
    ICollisionBody* one = bodies_[0];
    test::ForeignBody foreign(2);
    test::ForeignConfiguration foreign_configuration;
    std::vector<CollisionPair> out(5);
    const char* const null = "NullPointerException";
    const char* const foreign_body =
        "BadCastException: Could not recognize ICollisionBody as its internal implementation class "
        "(CollisionBody)";
    const char* const foreign_class =
        "BadCastException: Could not recognize ICollisionConfiguration as its internal implementation class "
        "(CollisionConfiguration)";
    const std::pair<std::function<void()>, const char*> calls[]{
        {[&] { c.AddElement(nullptr); }, null},
        {[&] { c.AddElement(nullptr, true); }, null},
        {[&] { c.AddElement(nullptr, false); }, null},
        {[&] { c.RemoveElement(nullptr); }, null},
        {[&] { c.ConfigCouple(one, nullptr, true); }, null},
        {[&] { c.ConfigCouple(nullptr, one, false); }, null},
        {[&] { c.ConfigElementAgainstAll(nullptr, false); }, null},
        {[&] { (void)c.CoupleIsEnable(one, nullptr); }, null},
        {[&] { (void)c.CoupleIsEnable(nullptr, one); }, null},
        {[&] { c.RetrieveCouples(out, nullptr); }, null},
        {[&] { c.MergeConfiguration(nullptr, true, 0); }, null},
        {[&] { c.AppendDistinctConfiguration(nullptr, 0); }, null},
        {[&] { c.AddElement(&foreign); }, foreign_body},
        {[&] { c.AddElement(&foreign, true); }, foreign_body},
        {[&] { c.AddElement(&foreign, false); }, foreign_body},
        {[&] { c.MergeConfiguration(&foreign_configuration, true, 0); }, foreign_class},
        {[&] { c.AppendDistinctConfiguration(&foreign_configuration, 0); }, foreign_class}};
    for (const auto& [call, text] : calls) {
        std::string thrown;
        try {
            call();
        } catch (const Exception& exception) {
            thrown = exception.displayText();
        }
        EXPECT_EQ(thrown, text) << "call " << &call - &calls[0].first;
        EXPECT_EQ(c.RetrieveElements(), bodies_);
        EXPECT_EQ(CouplesOf(c), before);
    }
    EXPECT_EQ(out.size(), 5U) << "the caller's vector stays as it was";

    // Elsewhere a foreign body is an absent one, known by its identifier where that is all that counts.
    EXPECT_FALSE(c.RemoveElement(&foreign));
    c.ConfigElementAgainstAll(&foreign, false);
    EXPECT_EQ(CouplesOf(c), before);
    EXPECT_TRUE(c.CoupleIsEnable(&foreign, one));
    EXPECT_EQ(c.RetrieveCouples(out, &foreign).size(), 2U);
    c.ConfigCouple(&foreign, one, false);
    EXPECT_FALSE(c.CoupleIsEnable(bodies_[1], one));
    c.ConfigCouple(&foreign, one, true);
    EXPECT_FALSE(c.CoupleIsEnable(bodies_[1], one)) << "both bodies must be present";
}

/// More couples than one batch of a bulk change holds, new and present ones mixed.
TEST_F(CollisionConfigurationTest, KeepsTheOrderOfManyCouples) {
    AddBodies(70, 0, 1);
    Model model;
    for (ICollisionBody* body : bodies_) model.AddElement(body);
    for (const auto& [kind, enable] :
         {std::pair{std::size_t{9}, true}, {13U, true}, {15U, true}, {14U, false}, {15U, false}}) {
        const Call call{kind, nullptr, nullptr, 0, 0, enable};
        ASSERT_EQ(Apply<ICollisionConfiguration>(call, configuration_, configuration_),
                  Apply(call, model, model));
        ASSERT_EQ(CouplesOf(configuration_), model.couples) << "kind " << kind;
    }
}

/// More bodies and couples than one task of the parallel loops takes.
TEST_F(CollisionConfigurationTest, CollectsAndUpdatesInManyTasks) {
    AddBodies(2500, 1000, 30);
    for (std::size_t i = 0; i < owned_.size(); ++i)
        owned_[i]->SetMatrix(test::Translation(static_cast<double>(i) + 1, 0, 0));
    for (std::uint64_t owner = 0; owner < 30; ++owner) configuration_.ConfigInterOwners(owner, 7, true);
    configuration_.UpdateBodies();
    for (std::size_t i = 0; i < owned_.size(); ++i)
        ASSERT_EQ(owned_[i]->CurrentMatrix()[3], static_cast<double>(i) + 1);

    const Couples couples = CouplesOf(configuration_);
    EXPECT_EQ(std::set<Couple>(couples.begin(), couples.end()).size(), configuration_.RetrieveCouplesCount());
    Couples expected;
    std::ranges::copy_if(couples, std::back_inserter(expected), [&](const Couple& couple) {
        return couple.first == bodies_[7] || couple.second == bodies_[7];
    });
    EXPECT_EQ(expected.size(), 2500U) << "with itself, too";
    std::vector<CollisionPair> out;
    for (int round = 0; round < 200; ++round) {
        ASSERT_EQ(CouplesOf(configuration_.RetrieveCouples(out, bodies_[7])), expected)
            << "in the order of all couples, whichever thread found them";
    }
}

}  // namespace
}  // namespace tarn::details
