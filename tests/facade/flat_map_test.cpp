#include "registry/flat_map.h"

#include <gtest/gtest.h>

#include <random>
#include <unordered_map>

namespace Ostrel::Quarrix::Collisions::test {
namespace {

/// Few different hashes, so that runs of slots are long and wrap around the end of the block.
struct Crowded {
    std::size_t operator()(int key) const { return static_cast<std::size_t>(key % 7); }
};

TEST(FlatMap, HoldsWhatAMapOfNodesHolds) {
    std::mt19937 random(5);
    std::unordered_map<int, int> expected;
    FlatMap<int, int, Crowded> map;
    for (int step = 0; step < 20'000; ++step) {
        const int key = static_cast<int>(random() % 100);
        if (expected.erase(key) != 0) {
            map.erase(key);
        } else {
            map.emplace(key, step);
            expected.emplace(key, step);
        }
        if (step % 5000 == 4999) {
            map.clear();
            expected.clear();
        }
        for (int each = 0; each < 100; ++each) {
            const auto found = expected.find(each);
            const auto* slot = map.find(each);
            ASSERT_EQ(slot ? slot->second : -1, found != expected.end() ? found->second : -1)
                << "step " << step << ", key " << each;
        }
    }
}

}  // namespace
}  // namespace Ostrel::Quarrix::Collisions::test
