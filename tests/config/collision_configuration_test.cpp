#include "config/collision_configuration.h"

#include "config/foreign_classes.h"
#include "core/collision_body.h"
#include "support/placements.h"

#include "tarn/exception.h"
#include "tarn/factory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarn::details {
namespace {

using Bodies = std::vector<CollisionBody*>;
using Couple = std::pair<ICollisionBody*, ICollisionBody*>;

/// The rules of a configuration written down one by one, on plain lists. A body that leaves a list leaves its
/// place to the last one.
class Model {
public:
    struct Owner {
        std::uint64_t id;
        Bodies bodies;
    };
    Bodies bodies;
    std::vector<Owner> owners;
    std::map<std::uint64_t, Couple> couples;

    static std::uint64_t Key(const ICollisionBody* x, const ICollisionBody* y) {
        const auto [smaller, larger] = std::minmax({std::uint64_t{x->GetId()}, std::uint64_t{y->GetId()}});
        return smaller * 0x100000000U + larger;
    }
    bool Has(const CollisionBody* body) const { return std::ranges::count(bodies, body) > 0; }

    void Add(CollisionBody* body) {
        PutInto(bodies, body);
        PutInto(OwnerOf(body->GetOwner()), body);
    }
    void Add(CollisionBody* body, bool enable) {
        if (Has(body)) {
            for (CollisionBody* other : bodies) Set(body, other, enable);
            if (enable) couples.erase(Key(body, body));
            return;
        }
        if (enable) {
            for (CollisionBody* other : bodies) Set(body, other, true);
        }
        Add(body);
    }
    bool Remove(CollisionBody* body) {
        if (!Has(body)) return false;
        const std::uint32_t id = body->GetId();
        std::erase_if(couples, [id](const auto& couple) {
            const auto is_subset_of = [id](std::uint64_t half) { return (id & half) == id; };
            return is_subset_of(couple.first >> 32) || is_subset_of(couple.first & 0xffffffffU);
        });
        for (Owner& owner : owners) TakeFrom(owner.bodies, body);
        TakeFrom(bodies, body);
        return true;
    }
    void EnableAll() {
        couples.clear();
        ConfigAll(true);
    }
    void ConfigCouple(CollisionBody* x, CollisionBody* y, bool enable) {
        if (!enable || (Has(x) && Has(y))) Set(x, y, enable);
    }
    void ConfigAgainstAll(CollisionBody* body, bool enable) {
        if (!Has(body)) return;
        for (CollisionBody* other : bodies) {
            if (other != body) Set(body, other, enable);
        }
    }
    void ConfigAll(bool enable) {
        if (enable) {
            SetAmong(bodies, true);
        } else {
            couples.clear();
        }
    }
    void ConfigIntra(std::uint64_t id, bool enable) {
        if (const Owner* owner = Find(id)) SetAmong(owner->bodies, enable);
    }
    void ConfigInter(std::uint64_t id1, std::uint64_t id2, bool enable) {
        const Owner* owner1 = Find(id1);
        const Owner* owner2 = Find(id2);
        if (!owner1 || !owner2) return;
        for (CollisionBody* x : owner1->bodies) {
            for (CollisionBody* y : owner2->bodies) Set(x, y, enable);
        }
    }
    void Append(const Model& other) {
        for (CollisionBody* body : other.bodies) PutInto(bodies, body);
        for (const Owner& owner : other.owners) {
            Bodies& set = OwnerOf(owner.id);
            for (CollisionBody* body : owner.bodies) PutInto(set, body);
        }
        couples.insert(other.couples.begin(), other.couples.end());
    }
    void Merge(const Model& other, bool enable) {
        const Bodies present = bodies;
        Append(other);
        for (CollisionBody* body : other.bodies) {
            if (std::ranges::count(present, body) > 0) continue;
            for (CollisionBody* old : present) Set(body, old, enable);
        }
    }

private:
    static void PutInto(Bodies& set, CollisionBody* body) {
        if (std::ranges::count(set, body) == 0) set.push_back(body);
    }
    static void TakeFrom(Bodies& set, CollisionBody* body) {
        const auto found = std::ranges::find(set, body);
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
    void Set(CollisionBody* x, CollisionBody* y, bool enable) {
        if (enable) {
            couples.insert({Key(x, y), {x, y}});
        } else {
            couples.erase(Key(x, y));
        }
    }
    void SetAmong(const Bodies& set, bool enable) {
        for (std::size_t i = 0; i < set.size(); ++i) {
            for (std::size_t j = i + 1; j < set.size(); ++j) Set(set[i], set[j], enable);
        }
    }
};

/// What a caller sees of a configuration, in the order in which it is handed out.
struct Listing {
    std::vector<ICollisionBody*> elements;
    std::vector<std::uint64_t> owners;
    std::vector<Couple> couples;

    explicit Listing(const ICollisionConfiguration& configuration)
        : elements(configuration.RetrieveElements()),
          owners(configuration.RetrieveOwners()) {
        std::vector<CollisionPair> pairs(3);
        for (const CollisionPair& pair : configuration.RetrieveCouples(pairs))
            couples.emplace_back(pair.First, pair.Second);
    }
    bool operator==(const Listing&) const = default;
};

void ExpectFollows(const ICollisionConfiguration& configuration,
                   const Model& model,
                   const Bodies& all_bodies) {
    ASSERT_TRUE(static_cast<const CollisionConfiguration&>(configuration).IsConsistent());
    const Listing listing(configuration);
    ASSERT_EQ(listing.elements, std::vector<ICollisionBody*>(model.bodies.begin(), model.bodies.end()));
    std::vector<std::uint64_t> owners;
    for (const Model::Owner& owner : model.owners) owners.push_back(owner.id);
    ASSERT_EQ(listing.owners, owners);

    ASSERT_EQ(configuration.RetrieveCouplesCount(), model.couples.size());
    ASSERT_EQ(listing.couples.size(), model.couples.size());
    std::map<std::uint64_t, Couple> couples;
    for (const Couple& couple : listing.couples)
        couples.insert({Model::Key(couple.first, couple.second), couple});
    ASSERT_EQ(couples, model.couples);

    for (CollisionBody* body : all_bodies) {
        std::vector<Couple> expected;
        std::ranges::copy_if(listing.couples, std::back_inserter(expected), [body](const Couple& couple) {
            return couple.first->GetId() == body->GetId() || couple.second->GetId() == body->GetId();
        });
        std::vector<CollisionPair> of_body(2);
        ASSERT_EQ(&configuration.RetrieveCouples(of_body, body), &of_body);
        ASSERT_TRUE(
            std::ranges::equal(of_body, expected, [](const CollisionPair& pair, const Couple& couple) {
                return Couple(pair.First, pair.Second) == couple;
            }));
        for (CollisionBody* other : all_bodies) {
            ASSERT_EQ(configuration.CoupleIsEnable(body, other),
                      model.couples.contains(Model::Key(body, other)));
        }
    }
}

/// Two configurations over the same bodies, each with its model.
struct World {
    std::vector<std::unique_ptr<CollisionBody>> owned;
    Bodies bodies;
    std::unique_ptr<ICollisionConfiguration> configurations[2]{make_unique_configuration(),
                                                               make_unique_configuration()};
    Model models[2];

    /// Shared identifiers, 0, and identifiers whose bits others contain.
    explicit World(bool reverse_allocation) {
        const std::vector<std::uint32_t> ids{1, 2, 3, 3, 5, 6, 7, 8, 12, 0, 0x80000000U};
        bodies.resize(ids.size());
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const std::size_t at = reverse_allocation ? ids.size() - 1 - i : i;
            owned.push_back(std::make_unique<CollisionBody>(ids[at], at % 3, std::to_string(at)));
            bodies[at] = owned.back().get();
        }
    }

    /// What one configuration lists, with names in place of addresses.
    std::vector<std::string> Names(std::size_t which) const {
        const Listing listing(*configurations[which]);
        std::vector<std::string> names;
        for (const ICollisionBody* body : listing.elements) names.push_back(body->GetName());
        for (const std::uint64_t owner : listing.owners) names.push_back("owner " + std::to_string(owner));
        for (const Couple& couple : listing.couples)
            names.push_back(couple.first->GetName() + "-" + couple.second->GetName());
        return names;
    }
};

struct Step {
    unsigned kind;
    std::size_t which;
    std::size_t x;
    std::size_t y;
    std::uint64_t owner1;
    std::uint64_t owner2;
    bool enable;
};

Step RandomStep(std::mt19937_64& random, std::size_t body_count) {
    const auto below = [&](std::size_t bound) { return static_cast<std::size_t>(random() % bound); };
    return {static_cast<unsigned>(below(20)),
            below(2),
            below(body_count),
            below(body_count),
            below(4),
            below(4),
            below(3) > 0};
}

void Apply(World& world, const Step& step) {
    ICollisionConfiguration& real = *world.configurations[step.which];
    Model& model = world.models[step.which];
    CollisionBody* x = world.bodies[step.x];
    CollisionBody* y = world.bodies[step.y];
    const auto merge_policy = static_cast<int>(step.owner1);
    const std::size_t other = step.y % 4 == 0 ? step.which : 1 - step.which;
    switch (step.kind) {
        case 0:
        case 1:
        case 2:
        case 3:
        case 4:
            real.AddElement(x, step.enable);
            return model.Add(x, step.enable);
        case 5:
        case 6:
            real.AddElement(x);
            return model.Add(x);
        case 7:
        case 8:
            ASSERT_EQ(real.RemoveElement(x), model.Remove(x));
            return;
        case 9:
            if (step.x + step.y > 2) return;
            real.RemoveAllElements();
            model = Model();
            return;
        case 10:
            real.EnableAllCouples();
            return model.EnableAll();
        case 11:
        case 12:
            real.ConfigCouple(x, y, step.enable);
            return model.ConfigCouple(x, y, step.enable);
        case 13:
            real.ConfigElementAgainstAll(x, step.enable);
            return model.ConfigAgainstAll(x, step.enable);
        case 14:
            real.ConfigAllCouples(step.enable);
            return model.ConfigAll(step.enable);
        case 15:
            real.ConfigIntraOwner(step.owner1, step.enable);
            return model.ConfigIntra(step.owner1, step.enable);
        case 16:
            real.ConfigInterOwners(step.owner1, step.owner2, step.enable);
            return model.ConfigInter(step.owner1, step.owner2, step.enable);
        case 17:
            return x->SetOwner(step.owner1);
        case 18:
            if (step.x % 2 == 0) {
                real.AppendDistinctConfiguration(world.configurations[other].get(), merge_policy);
                if (other != step.which) model.Append(world.models[other]);
            } else {
                real.MergeConfiguration(world.configurations[other].get(), step.enable, merge_policy);
                if (other != step.which) model.Merge(world.models[other], step.enable);
            }
            return;
        default:
            world.configurations[step.which].reset(real.Clone());
    }
}

/// Properties: after any calls a configuration lists what the rules say, every couple in the order in which
/// its bodies were given; and the same calls give the same lists in the same order wherever the bodies lie in
/// memory.
TEST(CollisionConfiguration, FollowsTheRulesUnderAnyCallsAndRepeatsItself) {
    std::mt19937_64 random(1);
    for (int sequence = 0; sequence < 120; ++sequence) {
        SCOPED_TRACE(sequence);
        World world(false);
        World twin(true);
        for (int i = 0; i < 100; ++i) {
            const Step step = RandomStep(random, world.bodies.size());
            SCOPED_TRACE(testing::Message() << "call " << i << " of kind " << step.kind);
            ASSERT_NO_FATAL_FAILURE(Apply(world, step));
            ASSERT_NO_FATAL_FAILURE(Apply(twin, step));
            for (std::size_t which = 0; which < 2; ++which) {
                ASSERT_NO_FATAL_FAILURE(
                    ExpectFollows(*world.configurations[which], world.models[which], world.bodies));
                ASSERT_EQ(world.Names(which), twin.Names(which));
            }
        }
    }
}

class CollisionConfigurationTest : public testing::Test {
protected:
    CollisionBody one_{1, 10, "one"};
    CollisionBody two_{2, 10, "two"};
    CollisionBody three_{3, 20, "three"};
    CollisionConfiguration configuration_;

    void AddThree(bool enable) {
        for (CollisionBody* body : {&one_, &two_, &three_}) configuration_.AddElement(body, enable);
    }
    std::vector<Couple> Couples() const { return Listing(configuration_).couples; }
};

TEST_F(CollisionConfigurationTest, ListsBodiesAndCouplesAsTheyCame) {
    AddThree(true);
    const std::vector<Couple> expected{{&two_, &one_}, {&three_, &one_}, {&three_, &two_}};
    EXPECT_EQ(Couples(), expected) << "the new body comes first";
    AddThree(true);
    EXPECT_EQ(Couples(), expected) << "added again, nothing is new";
    EXPECT_TRUE(configuration_.CoupleIsEnable(&one_, &three_));
    EXPECT_TRUE(configuration_.CoupleIsEnable(&three_, &one_));
    configuration_.EnableAllCouples();
    EXPECT_EQ(Couples(), (std::vector<Couple>{{&one_, &two_}, {&one_, &three_}, {&two_, &three_}}));
    EXPECT_EQ(configuration_.RetrieveElements(), (std::vector<ICollisionBody*>{&one_, &two_, &three_}));
    EXPECT_EQ(configuration_.RetrieveOwners(), (std::vector<std::uint64_t>{10, 20}));
}

TEST_F(CollisionConfigurationTest, TakesCouplesOfLargerBitSetsAlongWithARemovedBody) {
    AddThree(true);
    EXPECT_TRUE(configuration_.RemoveElement(&one_));
    EXPECT_EQ(configuration_.RetrieveCouplesCount(), 0U) << "1 is a bit subset of 3";
    EXPECT_FALSE(configuration_.RemoveElement(&one_));
    EXPECT_TRUE(configuration_.RemoveElement(&three_));
    EXPECT_EQ(configuration_.RetrieveOwners(), (std::vector<std::uint64_t>{10, 20})) << "owners stay";
}

TEST_F(CollisionConfigurationTest, MakesSelfCouplesOnlyByOwnersAndErasesThemWithTheirBody) {
    AddThree(false);
    configuration_.ConfigInterOwners(10, 10, true);
    EXPECT_EQ(configuration_.RetrieveCouplesCount(), 3U);
    EXPECT_TRUE(configuration_.CoupleIsEnable(&one_, &one_));
    configuration_.AddElement(&one_, true);
    EXPECT_FALSE(configuration_.CoupleIsEnable(&one_, &one_));
    EXPECT_TRUE(configuration_.CoupleIsEnable(&two_, &two_));
    EXPECT_TRUE(configuration_.CoupleIsEnable(&three_, &one_));

    // The self key also names the couple of two bodies that share an identifier.
    CollisionBody other_two(2, 30, "other two");
    configuration_.ConfigAllCouples(false);
    configuration_.AddElement(&other_two, true);
    EXPECT_TRUE(configuration_.CoupleIsEnable(&two_, &other_two)) << "a new body keeps it";
    configuration_.AddElement(&other_two, true);
    EXPECT_FALSE(configuration_.CoupleIsEnable(&two_, &other_two)) << "a present one erases it";
}

TEST_F(CollisionConfigurationTest, LearnsOfANewOwnerOnlyWhereToldAndForgetsABodyEverywhere) {
    AddThree(false);
    one_.SetOwner(20);
    configuration_.AddElement(&one_, false);
    configuration_.ConfigInterOwners(20, 20, true);
    EXPECT_FALSE(configuration_.CoupleIsEnable(&one_, &three_));
    configuration_.AddElement(&one_);
    configuration_.ConfigInterOwners(20, 20, true);
    EXPECT_TRUE(configuration_.CoupleIsEnable(&one_, &three_));
    one_.SetOwner(40);
    EXPECT_TRUE(configuration_.RemoveElement(&one_));
    EXPECT_EQ(configuration_.RetrieveOwners(), (std::vector<std::uint64_t>{10, 20})) << "none is made for 40";
    for (const std::uint64_t owner : {10U, 20U}) configuration_.ConfigInterOwners(owner, owner, true);
    EXPECT_TRUE(configuration_.IsConsistent()) << "no owner still holds the removed body";
    EXPECT_EQ(configuration_.RetrieveCouplesCount(), 2U);
}

TEST_F(CollisionConfigurationTest, MergesNewBodiesWithThoseThatWerePresent) {
    AddThree(true);
    CollisionBody four(4, 30, "four");
    CollisionBody five(5, 30, "five");
    CollisionConfiguration appended;
    for (CollisionBody* body : {&three_, &four, &five}) appended.AddElement(body, true);
    const std::unique_ptr<ICollisionConfiguration> apart(configuration_.Clone());
    const std::unique_ptr<ICollisionConfiguration> joined(configuration_.Clone());
    configuration_.AppendDistinctConfiguration(&appended, 7);
    EXPECT_EQ(configuration_.RetrieveCouplesCount(), 6U) << "nothing but the union";
    apart->MergeConfiguration(&appended, false, 7);
    EXPECT_EQ(apart->RetrieveCouplesCount(), 4U) << "the common body counts as present";
    EXPECT_FALSE(apart->CoupleIsEnable(&three_, &four));
    EXPECT_TRUE(apart->CoupleIsEnable(&four, &five)) << "new bodies are left as they came";
    appended.ConfigAllCouples(false);
    joined->MergeConfiguration(&appended, true, 7);
    EXPECT_EQ(joined->RetrieveCouplesCount(), 9U);
    EXPECT_FALSE(joined->CoupleIsEnable(&four, &five));
    EXPECT_EQ(appended.RetrieveElements().size(), 3U) << "the other configuration stays as it is";
    EXPECT_EQ(appended.RetrieveCouplesCount(), 0U);
}

TEST_F(CollisionConfigurationTest, RefusesWhatItCannotUseBeforeAnyChange) {
    AddThree(true);
    test::ForeignBody foreign(2);
    test::ForeignConfiguration foreign_configuration;
    CollisionConfiguration& c = configuration_;
    const Listing before(c);
    std::vector<CollisionPair> out(5);
    const std::vector<std::function<void()>> null_calls{
        [&] { c.AddElement(nullptr); },
        [&] { c.AddElement(nullptr, true); },
        [&] { c.AddElement(nullptr, false); },
        [&] { c.RemoveElement(nullptr); },
        [&] { c.ConfigCouple(&one_, nullptr, true); },
        [&] { c.ConfigCouple(nullptr, &one_, false); },
        [&] { c.ConfigElementAgainstAll(nullptr, false); },
        [&] { (void)c.CoupleIsEnable(&one_, nullptr); },
        [&] { (void)c.CoupleIsEnable(nullptr, &one_); },
        [&] { c.RetrieveCouples(out, nullptr); },
        [&] { c.MergeConfiguration(nullptr, true, 0); },
        [&] { c.AppendDistinctConfiguration(nullptr, 0); },
    };
    for (std::size_t i = 0; i < null_calls.size(); ++i) {
        SCOPED_TRACE(i);
        try {
            null_calls[i]();
            ADD_FAILURE() << "null was taken";
        } catch (const NullPointerException& exception) {
            EXPECT_EQ(exception.message(), "");
        }
        EXPECT_EQ(Listing(c), before);
    }
    EXPECT_EQ(out.size(), 5U) << "the caller's vector stays as it was";

    const std::vector<std::function<void()>> foreign_body_calls{[&] { c.AddElement(&foreign); },
                                                                [&] { c.AddElement(&foreign, true); },
                                                                [&] { c.AddElement(&foreign, false); }};
    for (const auto& call : foreign_body_calls) {
        try {
            call();
            ADD_FAILURE() << "a foreign body was taken";
        } catch (const BadCastException& exception) {
            EXPECT_EQ(
                exception.message(),
                "Could not recognize ICollisionBody as its internal implementation class (CollisionBody)");
        }
        EXPECT_EQ(Listing(c), before);
    }
    EXPECT_THROW(c.MergeConfiguration(&foreign_configuration, true, 0), BadCastException);
    EXPECT_THROW(c.AppendDistinctConfiguration(&foreign_configuration, 0), BadCastException);
    EXPECT_EQ(Listing(c), before);

    // Elsewhere a foreign body is an absent one, known by its identifier where that is all that counts.
    EXPECT_FALSE(c.RemoveElement(&foreign));
    c.ConfigElementAgainstAll(&foreign, false);
    EXPECT_EQ(Listing(c), before);
    EXPECT_TRUE(c.CoupleIsEnable(&foreign, &one_));
    EXPECT_EQ(c.RetrieveCouples(out, &foreign).size(), 2U);
    c.ConfigCouple(&foreign, &one_, false);
    EXPECT_FALSE(c.CoupleIsEnable(&two_, &one_));
    c.ConfigCouple(&foreign, &one_, true);
    EXPECT_FALSE(c.CoupleIsEnable(&two_, &one_)) << "both bodies must be present";
}

/// More couples than one batch of a bulk change holds, new and present ones mixed.
TEST_F(CollisionConfigurationTest, KeepsTheOrderOfManyCouples) {
    std::vector<std::unique_ptr<CollisionBody>> bodies;
    std::vector<Couple> expected;
    for (std::uint32_t i = 0; i < 70; ++i) {
        bodies.push_back(std::make_unique<CollisionBody>(i, 0, "body"));
        configuration_.AddElement(bodies.back().get());
    }
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        for (std::size_t j = i + 1; j < bodies.size(); ++j)
            expected.emplace_back(bodies[i].get(), bodies[j].get());
    }
    configuration_.EnableAllCouples();
    EXPECT_EQ(Couples(), expected);
    configuration_.ConfigAllCouples(true);
    EXPECT_EQ(Couples(), expected) << "all are there already";
    configuration_.ConfigInterOwners(0, 0, true);
    for (const auto& body : bodies) expected.emplace_back(body.get(), body.get());
    EXPECT_EQ(Couples(), expected) << "the self couples come last, the rest stays";
    configuration_.ConfigIntraOwner(0, false);
    EXPECT_EQ(configuration_.RetrieveCouplesCount(), bodies.size());
    configuration_.ConfigInterOwners(0, 0, false);
    EXPECT_EQ(configuration_.RetrieveCouplesCount(), 0U);
}

/// More bodies and couples than one task of the parallel loops takes.
TEST_F(CollisionConfigurationTest, CollectsAndUpdatesInManyTasks) {
    std::vector<std::unique_ptr<CollisionBody>> bodies;
    for (std::uint32_t i = 0; i < 2500; ++i) {
        bodies.push_back(std::make_unique<CollisionBody>(1000 + i, i % 30, "body"));
        bodies.back()->SetMatrix(test::Translation(i + 1.0, 0, 0));
        configuration_.AddElement(bodies.back().get(), false);
    }
    for (std::uint64_t owner = 0; owner < 30; ++owner) configuration_.ConfigInterOwners(owner, 7, true);
    configuration_.UpdateBodies();
    for (std::size_t i = 0; i < bodies.size(); ++i)
        ASSERT_EQ(bodies[i]->CurrentMatrix()[3], static_cast<double>(i + 1)) << i;

    const std::size_t count = configuration_.RetrieveCouplesCount();
    const std::vector<Couple> couples = Couples();
    EXPECT_EQ(std::set<Couple>(couples.begin(), couples.end()).size(), count) << "each couple once";
    std::vector<CollisionPair> out;
    EXPECT_EQ(configuration_.RetrieveCouples(out, bodies[7].get()).size(), 2500U) << "with itself, too";
    std::vector<Couple> of_body;
    of_body.reserve(out.size());
    for (const CollisionPair& pair : out) of_body.emplace_back(pair.First, pair.Second);
    std::vector<Couple> expected;
    std::ranges::copy_if(couples, std::back_inserter(expected), [&](const Couple& couple) {
        return couple.first == bodies[7].get() || couple.second == bodies[7].get();
    });
    EXPECT_EQ(of_body, expected) << "in the order of all couples, whichever thread found them";
    EXPECT_EQ(configuration_.RetrieveCouples(out, bodies[8].get()).size(), 84U) << "bodies 7, 37, ... 2497";
}

}  // namespace
}  // namespace tarn::details
