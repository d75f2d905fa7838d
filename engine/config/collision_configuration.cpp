#include "config/collision_configuration.h"

#include "core/parallel.h"

#include "tarn/exception.h"

#include <algorithm>
#include <memory>
#include <span>

using tarn::BadCastException;
using tarn::CollisionPair;
using tarn::ICollisionBody;
using tarn::ICollisionConfiguration;
using tarn::NullPointerException;
using tarn::details::BodySet;
using tarn::details::CollisionBody;
using tarn::details::CoupleTable;

namespace {

/// Bodies or couples that a task of the loops over all of them takes at a time.
constexpr std::size_t kChunk = 1024;

void RequireNotNull(const void* pointer) {
    if (!pointer) throw NullPointerException();
}

CollisionBody* RequireOwnClass(ICollisionBody* body) {
    RequireNotNull(body);
    auto* own = dynamic_cast<CollisionBody*>(body);
    if (!own) {
        throw BadCastException(
            "Could not recognize ICollisionBody as its internal implementation class (CollisionBody)");
    }
    return own;
}

const CollisionConfiguration& RequireOwnClass(const ICollisionConfiguration* configuration) {
    RequireNotNull(configuration);
    const auto* own = dynamic_cast<const CollisionConfiguration*>(configuration);
    if (!own) {
        throw BadCastException(
            "Could not recognize ICollisionConfiguration as its internal implementation class "
            "(CollisionConfiguration)");
    }
    return *own;
}

tarn::details::PairKey KeyOf(const ICollisionBody* body1, const ICollisionBody* body2) {
    return tarn::details::MakePairKey(body1->GetId(), body2->GetId());
}

/// n (n - 1) / 2.
std::size_t CountAllCouples(std::size_t body_count) {
    return body_count < 2 ? 0 : body_count * (body_count - 1) / 2;
}

/// Calls `visit` for every two different bodies of a set, each couple once, the earlier body first.
template <typename Visitor>
void ForEachCouple(const BodySet& bodies, Visitor visit) {
    for (std::size_t i = 0; i < bodies.size(); ++i) {
        for (std::size_t j = i + 1; j < bodies.size(); ++j) visit(bodies[i], bodies[j]);
    }
}

/// Hands couples to a table in batches, the last one by `Flush`.
class CoupleInserter {
public:
    explicit CoupleInserter(CoupleTable& couples) : couples_(couples) { batch_.reserve(kChunk); }
    CoupleInserter(const CoupleInserter&) = delete;
    CoupleInserter& operator=(const CoupleInserter&) = delete;

    void operator()(CollisionBody* first, CollisionBody* second) {
        batch_.emplace_back(first, second);
        if (batch_.size() == kChunk) Flush();
    }
    void Flush() {
        couples_.InsertAll(batch_);
        batch_.clear();
    }

private:
    CoupleTable& couples_;
    std::vector<KeyBodyPair> batch_;
};

/// Copies the couples of a chunk to their places in the output, one for one.
struct KeyCollectorFunctorAllPairs {
    const CoupleTable& couples;
    std::vector<CollisionPair>& out;

    void operator()(std::size_t begin, std::size_t end) const {
        for (std::size_t i = begin; i < end; ++i) out[i] = {couples[i].First(), couples[i].Second()};
    }
};

/// Notes the positions of a chunk's couples that contain an identifier.
struct KeyCollectorFunctorPairs {
    const CoupleTable& couples;
    std::uint32_t id;
    tarn::details::Combinable<std::vector<std::size_t>>& positions;

    void operator()(std::size_t begin, std::size_t end) const {
        std::vector<std::size_t>& local = positions.Local();
        for (std::size_t i = begin; i < end; ++i) {
            if (tarn::details::KeyContains(couples[i].Key(), id)) local.push_back(i);
        }
    }
};

}  // namespace

void CollisionConfiguration::SetCouple(CollisionBody* first, CollisionBody* second, bool enable) {
    if (enable) {
        couples_.Insert(KeyBodyPair(first, second));
    } else {
        couples_.Erase(KeyOf(first, second));
    }
}

template <typename ForEach>
void CollisionConfiguration::SetCouples(bool enable, std::size_t most, ForEach for_each) {
    if (enable) {
        // Room for all that is missing comes before the first change: what follows cannot throw.
        std::size_t missing = most;
        if (!couples_.empty()) {
            missing = 0;
            for_each([&](CollisionBody* first, CollisionBody* second) {
                if (!couples_.Contains(KeyOf(first, second))) ++missing;
            });
        }
        CoupleInserter insert(couples_);
        couples_.ReserveMore(missing);
        for_each([&](CollisionBody* first, CollisionBody* second) { insert(first, second); });
        insert.Flush();
        return;
    }
    for_each([&](CollisionBody* first, CollisionBody* second) { SetCouple(first, second, false); });
}

void CollisionConfiguration::AddElement(ICollisionBody* body, bool enable) {
    CollisionBody* own = RequireOwnClass(body);
    const BodySet& bodies = registry_.Bodies();
    if (registry_.Find(body)) {
        SetCouples(enable, bodies.size(), [&](auto visit) {
            for (CollisionBody* other : bodies) visit(own, other);
        });
        if (enable) SetCouple(own, own, false);
        return;
    }
    // What can throw comes first.
    const std::size_t present_count = bodies.size();
    if (enable) couples_.ReserveMore(present_count);
    registry_.Add(own);
    if (!enable) return;
    for (std::size_t i = 0; i < present_count; ++i) SetCouple(own, bodies[i], true);
}

void CollisionConfiguration::AddElement(ICollisionBody* body) {
    registry_.Add(RequireOwnClass(body));
}

bool CollisionConfiguration::RemoveElement(ICollisionBody* body) {
    RequireNotNull(body);
    CollisionBody* own = registry_.Find(body);
    if (!own) return false;
    const std::uint32_t id = own->GetId();
    couples_.EraseIf([id](const KeyBodyPair& pair) { return tarn::details::KeyIsTouchedBy(pair.Key(), id); });
    registry_.Remove(own);
    return true;
}

void CollisionConfiguration::RemoveAllElements() {
    couples_.Clear();
    registry_.Clear();
}

void CollisionConfiguration::EnableAllCouples() {
    CoupleTable all;
    all.ReserveMore(CountAllCouples(registry_.Bodies().size()));
    CoupleInserter insert(all);
    ForEachCouple(registry_.Bodies(),
                  [&](CollisionBody* first, CollisionBody* second) { insert(first, second); });
    insert.Flush();
    couples_ = std::move(all);
}

std::vector<std::uint64_t> CollisionConfiguration::RetrieveOwners() const {
    std::vector<std::uint64_t> owners;
    owners.reserve(registry_.Owners().size());
    for (const auto& group : registry_.Owners()) owners.push_back(group.owner);
    return owners;
}

void CollisionConfiguration::ConfigCouple(ICollisionBody* body1, ICollisionBody* body2, bool enable) {
    RequireNotNull(body1);
    RequireNotNull(body2);
    if (!enable) {
        couples_.Erase(KeyOf(body1, body2));
        return;
    }
    CollisionBody* first = registry_.Find(body1);
    CollisionBody* second = registry_.Find(body2);
    if (first && second) SetCouple(first, second, true);
}

void CollisionConfiguration::ConfigElementAgainstAll(ICollisionBody* body, bool enable) {
    RequireNotNull(body);
    CollisionBody* own = registry_.Find(body);
    if (!own) return;
    const BodySet& bodies = registry_.Bodies();
    SetCouples(enable, bodies.size(), [&](auto visit) {
        for (CollisionBody* other : bodies) {
            if (other != own) visit(own, other);
        }
    });
}

void CollisionConfiguration::ConfigAllCouples(bool enable) {
    if (!enable) {
        couples_.Clear();
        return;
    }
    const BodySet& bodies = registry_.Bodies();
    SetCouples(true, CountAllCouples(bodies.size()), [&](auto visit) { ForEachCouple(bodies, visit); });
}

void CollisionConfiguration::ConfigIntraOwner(std::uint64_t owner, bool enable) {
    const BodySet* bodies = registry_.FindOwner(owner);
    if (!bodies) return;
    SetCouples(enable, CountAllCouples(bodies->size()), [&](auto visit) { ForEachCouple(*bodies, visit); });
}

void CollisionConfiguration::ConfigInterOwners(std::uint64_t owner1, std::uint64_t owner2, bool enable) {
    const BodySet* bodies1 = registry_.FindOwner(owner1);
    const BodySet* bodies2 = registry_.FindOwner(owner2);
    if (!bodies1 || !bodies2) return;
    if (owner1 == owner2) {
        // Each body with itself and with those after it: with those before it, it is coupled already.
        SetCouples(enable, bodies1->size() + CountAllCouples(bodies1->size()), [&](auto visit) {
            for (std::size_t i = 0; i < bodies1->size(); ++i) {
                for (std::size_t j = i; j < bodies1->size(); ++j) visit((*bodies1)[i], (*bodies1)[j]);
            }
        });
        return;
    }
    SetCouples(enable, bodies1->size() * bodies2->size(), [&](auto visit) {
        for (CollisionBody* first : *bodies1) {
            for (CollisionBody* second : *bodies2) visit(first, second);
        }
    });
}

bool CollisionConfiguration::CoupleIsEnable(ICollisionBody* body1, ICollisionBody* body2) const {
    RequireNotNull(body1);
    RequireNotNull(body2);
    return couples_.Contains(KeyOf(body1, body2));
}

std::vector<ICollisionBody*> CollisionConfiguration::RetrieveElements() const {
    return {registry_.Bodies().begin(), registry_.Bodies().end()};
}

std::vector<CollisionPair>& CollisionConfiguration::RetrieveCouples(std::vector<CollisionPair>& out) const {
    std::vector<CollisionPair> pairs(couples_.size());
    tarn::details::ParallelFor(couples_.size(), kChunk, KeyCollectorFunctorAllPairs{couples_, pairs});
    out.swap(pairs);
    return out;
}

std::vector<CollisionPair>& CollisionConfiguration::RetrieveCouples(std::vector<CollisionPair>& out,
                                                                    ICollisionBody* body) const {
    RequireNotNull(body);
    tarn::details::Combinable<std::vector<std::size_t>> found;
    tarn::details::ParallelFor(couples_.size(), kChunk,
                               KeyCollectorFunctorPairs{couples_, body->GetId(), found});
    std::vector<std::size_t> positions;
    found.ForEach([&](const std::vector<std::size_t>& local) {
        positions.insert(positions.end(), local.begin(), local.end());
    });
    std::ranges::sort(positions);
    std::vector<CollisionPair> pairs;
    pairs.reserve(positions.size());
    for (const std::size_t i : positions) pairs.push_back({couples_[i].First(), couples_[i].Second()});
    out.swap(pairs);
    return out;
}

ICollisionConfiguration* CollisionConfiguration::Clone() const {
    return std::make_unique<CollisionConfiguration>(*this).release();
}

void CollisionConfiguration::Append(const CollisionConfiguration& other) {
    couples_.ReserveMore(other.couples_.size());
    registry_.Append(other.registry_);
    couples_.InsertAll(std::span(other.couples_.begin(), other.couples_.end()));
}

void CollisionConfiguration::MergeConfiguration(ICollisionConfiguration* other,
                                                bool enable,
                                                int /*merge_policy*/) {
    const CollisionConfiguration& appended = RequireOwnClass(other);
    if (&appended == this) return;
    const std::vector<CollisionBody*> present(registry_.Bodies().begin(), registry_.Bodies().end());
    std::vector<CollisionBody*> added;
    for (CollisionBody* body : appended.registry_.Bodies()) {
        if (!registry_.Find(body)) added.push_back(body);
    }
    if (enable) couples_.ReserveMore(appended.couples_.size() + added.size() * present.size());
    Append(appended);
    for (CollisionBody* first : added) {
        for (CollisionBody* second : present) SetCouple(first, second, enable);
    }
}

void CollisionConfiguration::AppendDistinctConfiguration(ICollisionConfiguration* other,
                                                         int /*merge_policy*/) {
    const CollisionConfiguration& appended = RequireOwnClass(other);
    if (&appended != this) Append(appended);
}

void CollisionConfiguration::UpdateBodies() {
    const BodySet& bodies = registry_.Bodies();
    tarn::details::ParallelFor(bodies.size(), kChunk, [&bodies](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) bodies[i]->Update();
    });
}

bool CollisionConfiguration::IsConsistent() const {
    const auto is_present = [this](const CollisionBody* body) { return registry_.Find(body) != nullptr; };
    for (const auto& group : registry_.Owners()) {
        if (!std::ranges::all_of(group.bodies, is_present)) return false;
    }
    return std::ranges::all_of(couples_, [&](const KeyBodyPair& pair) {
        return registry_.Find(pair.First()) && registry_.Find(pair.Second()) &&
               couples_.Contains(pair.Key()) && pair.Key() == KeyOf(pair.First(), pair.Second());
    });
}
