#include "facade/configuration_kinds.h"
#include "facade/part.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {
namespace {

using test::Parts;
using test::Said;

/// The rules of a configuration on part numbers.
class Model {
public:
    using Key = std::pair<std::size_t, std::size_t>;

    /// For each part the number of its owner.
    explicit Model(const std::vector<std::size_t>& owners) : owners_(&owners) {}

    /// In the order in which they came.
    std::vector<std::size_t> parts;
    /// The enabled ones and their clearances.
    std::map<Key, double> couples;

    bool Has(std::size_t part) const { return std::ranges::count(parts, part) > 0; }

    void Add(std::size_t part, const Said& said) {
        const bool is_new = !Has(part);
        for (const std::size_t other : parts) Set(part, other, said);
        if (is_new) parts.push_back(part);
        couples.erase({part, part});
    }
    void Remove(std::size_t part) {
        std::erase(parts, part);
        std::erase_if(couples, [part](const auto& couple) {
            return couple.first.first == part || couple.first.second == part;
        });
    }
    void Clear() {
        parts.clear();
        couples.clear();
    }
    void ConfigCouple(std::size_t x, std::size_t y, const Said& said) {
        if (Has(x) && Has(y)) Set(x, y, said);
    }
    void ConfigAll(const Said& said) {
        for (const std::size_t x : parts) {
            for (const std::size_t y : parts) {
                if (x < y || !said.enable) Set(x, y, said);
            }
        }
    }
    void EnableAll() {
        couples.clear();
        ConfigAll({true, 0.0});
    }
    void ConfigIntra(std::size_t owner, const Said& said) {
        for (const std::size_t x : Of(owner)) {
            for (const std::size_t y : Of(owner)) {
                if (x < y) Set(x, y, said);
            }
        }
    }
    /// One owner twice couples its parts with themselves, too.
    void ConfigInter(const std::vector<std::size_t>& owners, const Said& said) {
        for (std::size_t i = 0; i < owners.size(); ++i) {
            for (std::size_t j = i + 1; j < owners.size(); ++j) {
                for (const std::size_t x : Of(owners[i])) {
                    for (const std::size_t y : Of(owners[j])) Set(x, y, said);
                }
            }
        }
    }
    void ConfigAgainstAll(std::size_t owner, const Said& said) {
        for (const std::size_t x : Of(owner)) {
            for (const std::size_t y : parts) {
                if ((*owners_)[y] != owner) Set(x, y, said);
            }
        }
    }
    void Append(const Model& other) {
        for (const std::size_t part : other.parts) {
            if (!Has(part)) parts.push_back(part);
        }
        couples.insert(other.couples.begin(), other.couples.end());
    }
    void Merge(const Model& other, const Said& said) {
        const std::vector<std::size_t> present = parts;
        Append(other);
        for (const std::size_t x : other.parts) {
            if (std::ranges::count(present, x) > 0) continue;
            for (const std::size_t y : present) Set(x, y, said);
        }
    }

private:
    std::vector<std::size_t> Of(std::size_t owner) const {
        std::vector<std::size_t> of;
        std::ranges::copy_if(parts, std::back_inserter(of),
                             [&](std::size_t part) { return (*owners_)[part] == owner; });
        return of;
    }
    void Set(std::size_t x, std::size_t y, const Said& said) {
        if (said.enable) {
            couples[std::minmax(x, y)] = said.clearance;
        } else {
            couples.erase(std::minmax(x, y));
        }
    }

    const std::vector<std::size_t>* owners_;
};

template <typename Kind>
class ConfigurationModelTest : public test::RegistryTest<> {
protected:
    using Configuration = typename Kind::Configuration;

    static constexpr std::size_t kParts = 7;
    static constexpr std::size_t kOwners = 4;
    static constexpr std::size_t kConfigurations = 3;

    ConfigurationModelTest() {
        // Number 0 is no owner.
        owners_.push_back(nullptr);
        while (owners_.size() < kOwners) owners_.push_back(std::make_shared<test::Owner>());
    }

    std::size_t Below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }
    auto OwnersOf(const std::vector<std::size_t>& numbers) const {
        std::vector<std::shared_ptr<ICollisionElementOwner>> owners;
        owners.reserve(numbers.size());
        for (const std::size_t number : numbers) owners.push_back(owners_[number]);
        return owners;
    }

    /// One random operation on both sides.
    void Step() {
        const std::size_t which = Below(kConfigurations);
        std::shared_ptr<Configuration>& pointer = configurations_[which];
        Configuration& c = *pointer;
        Model& model = models_[which];
        const std::size_t from = Below(kConfigurations);
        const std::size_t x = Below(kParts);
        const std::size_t y = Below(kParts);
        const std::size_t owner = Below(kOwners);
        const std::vector<std::size_t> owners{owner, Below(kOwners), Below(kOwners)};
        const Said said{Below(3) > 0, static_cast<double>(Below(5))};
        const Said kept{said.enable, Kind::kHasClearances ? said.clearance : 0.0};
        kind_ = Below(25);
        switch (kind_) {
            case 0:
            case 1:
            case 2:
                test::Call<Kind>(c, &Configuration::AddElement, said, parts_[x]);
                model.Add(x, kept);
                break;
            case 3: {
                const Parts listed{parts_[x], parts_[y], parts_[(x + 1) % kParts], parts_[x]};
                test::Call<Kind>(c, &Configuration::AddElements, said, listed);
                for (const std::size_t part : {x, y, (x + 1) % kParts}) model.Add(part, kept);
                break;
            }
            case 4:
            case 5:
            case 6:
                c.RemoveElement(parts_[x]);
                model.Remove(x);
                break;
            case 7:
                c.RemoveAllElements();
                model.Clear();
                break;
            case 8:
            case 9:
                test::Call<Kind>(c, &Configuration::ConfigCouple, said, parts_[x], parts_[y]);
                model.ConfigCouple(x, y, kept);
                break;
            case 10:
                test::Call<Kind>(c, &Configuration::ConfigOwnerAgainstAll, said, owners_[owner]);
                model.ConfigAgainstAll(owner, kept);
                break;
            case 11:
                test::Call<Kind>(c, &Configuration::ConfigInterOwners, said, OwnersOf(owners));
                model.ConfigInter(owners, kept);
                break;
            case 12:
                test::Call<Kind>(c, &Configuration::ConfigIntraOwner, said, owners_[owner]);
                model.ConfigIntra(owner, kept);
                break;
            case 13:
                c.DisableAllChecks(owners_[owner]);
                model.ConfigIntra(owner, {false, 0.0});
                break;
            case 14:
                c.DisableAllChecks();
                model.ConfigAll({false, 0.0});
                break;
            case 15:
                if constexpr (!Kind::kHasClearances) {
                    c.EnableAllIntersectChecks(Below(2) == 0, 5.0);
                    model.EnableAll();
                }
                break;
            case 16:
                test::Call<Kind>(c, &Configuration::EnableOwnerAgainstAllOnly, said, owners_[owner]);
                model.ConfigAll({false, 0.0});
                model.ConfigAgainstAll(owner, kept);
                break;
            case 17:
                test::Call<Kind>(c, &Configuration::EnableInterOwnersOnly, said, OwnersOf(owners));
                model.ConfigAll({false, 0.0});
                model.ConfigInter(owners, kept);
                break;
            case 18:
                test::Call<Kind>(c, &Configuration::EnableIntraOwnerOnly, said, owners_[owner]);
                model.ConfigAll({false, 0.0});
                model.ConfigIntra(owner, kept);
                break;
            case 19:
                if constexpr (Kind::kHasClearances) {
                    c.MergeConfiguration(configurations_[from], std::get<0>(Kind::Arguments(said)),
                                         static_cast<MergePolicy>(Below(2)));
                } else {
                    test::Call<Kind>(c, &Configuration::MergeConfiguration, said, configurations_[from]);
                }
                if (from != which) model.Merge(Model(models_[from]), kept);
                break;
            case 20:
                c.AppendDistinctConfiguration(configurations_[from]);
                model.Append(Model(models_[from]));
                break;
            case 21:
                c.Swap(configurations_[from]);
                std::swap(model, models_[from]);
                break;
            case 22:
                pointer = configurations_[from]->Clone();
                model = Model(models_[from]);
                break;
            case 23:
                if (Below(2) == 0) pointer->Dispose();
                pointer = Kind::Make();
                model.Clear();
                break;
            default:
                if (Below(3) > 0) break;
                registry_.Clear();
                for (Model& each : models_) each.Clear();
        }
    }

    void ExpectFollows(const Configuration& c, const Model& model) {
        ASSERT_EQ(static_cast<std::size_t>(c.RetrieveCouplesCount()), model.couples.size());
        std::vector<std::size_t> elements;
        for (const auto& element : c.RetrieveElements()) elements.push_back(NumberOf(element));
        ASSERT_EQ(elements, model.parts);
        std::map<Model::Key, double> couples;
        for (const auto& couple : c.RetrieveCouples()) {
            const Model::Key key =
                std::minmax(NumberOf(couple->get_Element1()), NumberOf(couple->get_Element2()));
            ASSERT_TRUE(couples.emplace(key, Kind::ClearanceOf(*couple)).second);
        }
        ASSERT_EQ(couples, model.couples);
        const std::size_t x = Below(kParts);
        for (std::size_t y = 0; y < kParts; ++y) {
            const auto found = model.couples.find(std::minmax(x, y));
            const Said said = Kind::Answer(c.CoupleIsEnable(parts_[y], parts_[x]));
            ASSERT_EQ(said.enable, found != model.couples.end());
            ASSERT_EQ(said.clearance, said.enable ? found->second : 0.0);
        }
    }

    void ExpectUses() {
        std::size_t used = 0;
        for (std::size_t part = 0; part < kParts; ++part) {
            const auto uses = std::ranges::count_if(models_, [&](const Model& m) { return m.Has(part); });
            ASSERT_EQ(registry_.GetReferenceCount(parts_[part]), uses);
            if (uses > 0) ++used;
        }
        ASSERT_EQ(registry_.GetElementsCount(), used);
    }

    void Run(std::uint64_t seed) {
        random_.seed(seed);
        std::vector<std::size_t> numbers;
        parts_.clear();
        for (std::size_t i = 0; i < kParts; ++i) {
            numbers.push_back(Below(kOwners));
            parts_.push_back(std::make_shared<test::Part>("part", test::Mesh{{0, 0, 0, 1, 0, 0, 0, 1, 0}},
                                                          owners_[numbers[i]]));
        }
        models_.assign(kConfigurations, Model(numbers));
        configurations_.clear();
        for (std::size_t i = 0; i < kConfigurations; ++i) configurations_.push_back(Kind::Make());
        for (int step = 0; step < 30; ++step) {
            ASSERT_NO_FATAL_FAILURE(Step());
            for (std::size_t i = 0; i < kConfigurations; ++i) {
                // Looking lets go of bodies that the registry gave up: some operations meet them first.
                if (Below(2) == 0) continue;
                ASSERT_NO_FATAL_FAILURE(ExpectFollows(*configurations_[i], models_[i]))
                    << "step " << step << " of kind " << kind_ << ", configuration " << i;
            }
            ASSERT_NO_FATAL_FAILURE(ExpectUses()) << "step " << step << " of kind " << kind_;
        }
        configurations_.clear();
        ASSERT_EQ(registry_.GetElementsCount(), 0U);
    }

    /// Adds and removes thousands of elements, whose default hash codes must not contain each other's bits.
    void RunCrowd(std::uint64_t seed) {
        constexpr std::size_t kCrowd = 4000;
        random_.seed(seed);
        parts_ = test::MakeParts(kCrowd);
        const auto configuration = Kind::Make();
        std::vector<std::size_t> present;
        std::map<Model::Key, double> expected;
        for (std::size_t step = 0; step < 2 * kCrowd; ++step) {
            const std::size_t part = Below(kCrowd);
            const auto found = std::ranges::find(present, part);
            if (found != present.end()) {
                std::swap(*found, present.back());
                present.pop_back();
                configuration->RemoveElement(parts_[part]);
                std::erase_if(expected, [part](const auto& couple) {
                    return couple.first.first == part || couple.first.second == part;
                });
            } else {
                test::Call<Kind>(*configuration, &Configuration::AddElement, Said{false, 0.0}, parts_[part]);
                for (std::size_t i = 0; i < 3 && !present.empty(); ++i) {
                    const std::size_t other = present[Below(present.size())];
                    test::Call<Kind>(*configuration, &Configuration::ConfigCouple, Said{true, 0.0},
                                     parts_[part], parts_[other]);
                    expected.emplace(std::minmax(part, other), 0.0);
                }
                present.push_back(part);
            }
            if (step % 100 == 0) {
                ASSERT_EQ(static_cast<std::size_t>(configuration->RetrieveCouplesCount()), expected.size());
            }
        }
        numbers_.clear();
        for (std::size_t i = 0; i < kCrowd; ++i) numbers_.emplace(parts_[i].get(), i);
        std::map<Model::Key, double> couples;
        for (const auto& couple : configuration->RetrieveCouples()) {
            couples.emplace(std::minmax(numbers_.at(couple->get_Element1().get()),
                                        numbers_.at(couple->get_Element2().get())),
                            0.0);
        }
        EXPECT_EQ(couples, expected);
        EXPECT_GT(couples.size(), 1000U);
        EXPECT_EQ(registry_.GetElementsCount(), present.size());
    }

    void TearDown() override {
        configurations_.clear();
        parts_.clear();
        RegistryTest::TearDown();
    }

private:
    std::size_t NumberOf(const std::shared_ptr<ICollisionConfigurationElement>& element) const {
        return static_cast<std::size_t>(std::ranges::find(parts_, element) - parts_.begin());
    }

    std::mt19937_64 random_;
    std::size_t kind_ = 0;
    std::vector<std::shared_ptr<ICollisionElementOwner>> owners_;
    Parts parts_;
    std::map<const Object*, std::size_t> numbers_;
    std::vector<std::shared_ptr<Configuration>> configurations_;
    std::vector<Model> models_;
};

using Kinds = testing::Types<test::CollisionKind, test::PublicCollisionKind, test::ProximityKind>;
TYPED_TEST_SUITE(ConfigurationModelTest, Kinds, test::KindNames);

TYPED_TEST(ConfigurationModelTest, FollowsTheRulesUnderAnyOperations) {
    for (std::uint64_t seed = 1; seed <= 2000; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        ASSERT_NO_FATAL_FAILURE(this->Run(seed));
    }
}

TYPED_TEST(ConfigurationModelTest, RemovesNoCoupleOfAnotherElement) {
    this->RunCrowd(1);
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions
