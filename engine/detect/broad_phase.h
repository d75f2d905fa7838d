#pragma once

#include "config/pair_key.h"
#include "core/collision_body.h"
#include "core/function_ref.h"
#include "core/parallel.h"

#include "tarn/collision_body.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace tarn::details {

/// Visits, from several threads at a time, the pairs of bodies whose root boxes are nowhere farther apart than
/// `reach` along any axis; with a reach of 0, those whose boxes overlap. Bodies without triangles are near to
/// nothing. Returns false, with some pairs visited or none, where there are more than `most` such pairs, or
/// where a box is no number. All bodies are the library's own, and built.
///
/// Sweep and prune (D. Baraff, "Dynamic Simulation of Non-Penetrating Rigid Bodies", 1992) along the axis on
/// which the boxes spread most.
bool VisitNearBodies(std::span<ICollisionBody* const> bodies,
                     double reach,
                     std::size_t most,
                     FunctionRef<void(const CollisionBody& first, const CollisionBody& second)> visit);

/// The couples that are worth a look, by their positions: all, or those of bodies that are near.
class CoupleSelection {
public:
    explicit CoupleSelection(std::size_t couple_count) : size_(couple_count) {}
    explicit CoupleSelection(std::vector<std::size_t> positions)
        : size_(positions.size()),
          positions_(std::move(positions)) {}

    std::size_t size() const { return size_; }
    std::size_t operator[](std::size_t index) const { return positions_ ? (*positions_)[index] : index; }

private:
    std::size_t size_;
    std::optional<std::vector<std::size_t>> positions_;
};

/// Collects the positions of couples of near bodies. Looks them up in batches, as each search in a large table
/// waits for memory. `Add` is safe from any thread.
template <typename Couples>
class NearCouples {
public:
    explicit NearCouples(const Couples& couples) : couples_(couples) {}

    void Add(const CollisionBody& first, const CollisionBody& second) {
        Batch& batch = batches_.Local();
        batch.keys.push_back(MakePairKey(first.GetId(), second.GetId()));
        batch.bodies.push_back({&first, &second});
        if (batch.keys.size() == kBatch) LookUp(batch);
    }

    /// All positions, in order. Only when nobody adds any more.
    std::vector<std::size_t> Positions() {
        std::vector<std::size_t> all;
        batches_.ForEach([&](Batch& batch) {
            LookUp(batch);
            all.insert(all.end(), batch.positions.begin(), batch.positions.end());
        });
        std::ranges::sort(all);
        return all;
    }

private:
    static constexpr std::size_t kBatch = 256;

    struct Batch {
        std::vector<PairKey> keys;
        std::vector<std::pair<const CollisionBody*, const CollisionBody*>> bodies;
        std::vector<std::size_t> positions;
    };

    void LookUp(Batch& batch) {
        couples_.FindAll(batch.keys, [&](std::size_t i, const auto& couple) {
            // Bodies with the same identifier share the key: a couple is selected where its own bodies are
            // near.
            const auto& [first, second] = batch.bodies[i];
            if ((couple.First() == first && couple.Second() == second) ||
                (couple.First() == second && couple.Second() == first))
                batch.positions.push_back(static_cast<std::size_t>(&couple - &couples_[0]));
        });
        batch.keys.clear();
        batch.bodies.clear();
    }

    const Couples& couples_;
    Combinable<Batch> batches_;
};

/// Selects the couples of bodies that are no farther apart than `reach` along any axis, and maybe others; in
/// couple order. Looks at bodies instead of couples where these are many more.
template <typename Couples>
CoupleSelection SelectNear(const Couples& couples, std::span<ICollisionBody* const> bodies, double reach) {
    constexpr std::size_t kManyCouples = 8;
    if (couples.size() < kManyCouples * bodies.size()) return CoupleSelection(couples.size());
    NearCouples<Couples> near(couples);
    const auto add = [&](const CollisionBody& first, const CollisionBody& second) {
        near.Add(first, second);
    };
    if (!VisitNearBodies(bodies, reach, couples.size() / kManyCouples, add))
        return CoupleSelection(couples.size());
    return CoupleSelection(near.Positions());
}

}  // namespace tarn::details
