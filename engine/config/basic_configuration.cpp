#include "config/basic_configuration.h"

#include "config/collision_configuration.h"
#include "config/own_body.h"
#include "config/proximity_configuration.h"
#include "core/parallel.h"

#include "tarn/exception.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <span>

namespace tarn::details {

namespace {

/// Bodies or couples that a task of the loops over all of them takes at a time.
constexpr std::size_t kChunk = 1024;

template <typename Kind>
const BasicConfiguration<Kind>& RequireOwnConfiguration(const typename Kind::Interface* configuration) {
    RequireNotNull(configuration);
    const auto* own = dynamic_cast<const BasicConfiguration<Kind>*>(configuration);
    if (!own) throw BadCastException(Kind::kForeignConfiguration);
    return *own;
}

PairKey KeyOf(const ICollisionBody* body1, const ICollisionBody* body2) {
    return MakePairKey(body1->GetId(), body2->GetId());
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

/// Hands couples of one setting to a table in batches, the last one by `Flush`.
template <typename Kind>
class CoupleInserter {
public:
    using Couple = typename Kind::Couple;
    using Couples = IndexedTable<Couple, KeyOfPair>;

    CoupleInserter(Couples& couples, typename Kind::Setting setting) : couples_(couples), setting_(setting) {
        batch_.reserve(kChunk);
    }
    CoupleInserter(const CoupleInserter&) = delete;
    CoupleInserter& operator=(const CoupleInserter&) = delete;

    void operator()(CollisionBody* first, CollisionBody* second) {
        batch_.push_back(Kind::MakeCouple(first, second, setting_));
        if (batch_.size() == kChunk) Flush();
    }
    void Flush() {
        couples_.InsertAll(batch_, Kind::Overwrite);
        batch_.clear();
    }

private:
    Couples& couples_;
    typename Kind::Setting setting_;
    std::vector<Couple> batch_;
};

/// Copies the couples of a chunk to their places in the output, one for one.
template <typename Kind>
struct KeyCollectorFunctorAllPairs {
    const IndexedTable<typename Kind::Couple, KeyOfPair>& couples;
    std::vector<typename Kind::Record>& out;

    void operator()(std::size_t begin, std::size_t end) const {
        for (std::size_t i = begin; i < end; ++i) out[i] = Kind::RecordOf(couples[i]);
    }
};

/// Notes the positions of a chunk's couples that contain an identifier.
template <typename Kind>
struct KeyCollectorFunctorPairs {
    const IndexedTable<typename Kind::Couple, KeyOfPair>& couples;
    std::uint32_t id;
    Combinable<std::vector<std::size_t>>& positions;

    void operator()(std::size_t begin, std::size_t end) const {
        std::vector<std::size_t>& local = positions.Local();
        for (std::size_t i = begin; i < end; ++i) {
            if (KeyContains(couples[i].Key(), id)) local.push_back(i);
        }
    }
};

}  // namespace

template <typename Kind>
void BasicConfiguration<Kind>::SetCouple(CollisionBody* first, CollisionBody* second, Setting setting) {
    const PairKey key = KeyOf(first, second);
    if (!Kind::Enables(setting)) {
        couples_.Erase(key);
        return;
    }
    const Couple couple = Kind::MakeCouple(first, second, setting);
    if (Couple* present = couples_.Find(key)) {
        Kind::Overwrite(*present, couple);
    } else {
        couples_.Insert(couple);
    }
}

template <typename Kind>
template <typename ForEach>
void BasicConfiguration<Kind>::SetCouples(Setting setting, std::size_t most, ForEach for_each) {
    if (Kind::Enables(setting)) {
        // Room for all that is missing comes before the first change: what follows cannot throw.
        std::size_t missing = most;
        if (!couples_.empty()) {
            missing = 0;
            for_each([&](CollisionBody* first, CollisionBody* second) {
                if (!couples_.Contains(KeyOf(first, second))) ++missing;
            });
        }
        CoupleInserter<Kind> insert(couples_, setting);
        couples_.ReserveMore(missing);
        for_each(std::ref(insert));
        insert.Flush();
        return;
    }
    for_each([&](CollisionBody* first, CollisionBody* second) { couples_.Erase(KeyOf(first, second)); });
}

template <typename Kind>
void BasicConfiguration<Kind>::AddElement(ICollisionBody* body, Setting setting) {
    const bool enable = Kind::Enables(setting);
    CollisionBody* own = RequireOwnClass(body);
    const BodySet& bodies = registry_.Bodies();
    if (registry_.Find(body)) {
        SetCouples(setting, bodies.size(), [&](auto visit) {
            for (CollisionBody* other : bodies) visit(own, other);
        });
        if (enable) couples_.Erase(KeyOf(own, own));
        return;
    }
    // What can throw comes first.
    const std::size_t present_count = bodies.size();
    if (enable) couples_.ReserveMore(present_count);
    registry_.Add(own);
    if (!enable) return;
    for (std::size_t i = 0; i < present_count; ++i) SetCouple(own, bodies[i], setting);
}

template <typename Kind>
void BasicConfiguration<Kind>::AddElement(ICollisionBody* body) {
    registry_.Add(RequireOwnClass(body));
}

template <typename Kind>
bool BasicConfiguration<Kind>::RemoveElement(ICollisionBody* body) {
    RequireNotNull(body);
    CollisionBody* own = registry_.Find(body);
    if (!own) return false;
    const std::uint32_t id = own->GetId();
    couples_.EraseIf([id](const Couple& pair) { return KeyIsTouchedBy(pair.Key(), id); });
    registry_.Remove(own);
    return true;
}

template <typename Kind>
void BasicConfiguration<Kind>::RemoveAllElements() {
    couples_.Clear();
    registry_.Clear();
}

template <typename Kind>
void BasicConfiguration<Kind>::ReplaceByAllCouples(Setting setting) {
    Couples all;
    all.ReserveMore(CountAllCouples(registry_.Bodies().size()));
    CoupleInserter<Kind> insert(all, setting);
    ForEachCouple(registry_.Bodies(), std::ref(insert));
    insert.Flush();
    couples_ = std::move(all);
}

template <typename Kind>
std::vector<std::uint64_t> BasicConfiguration<Kind>::RetrieveOwners() const {
    std::vector<std::uint64_t> owners;
    owners.reserve(registry_.Owners().size());
    for (const auto& group : registry_.Owners()) owners.push_back(group.owner);
    return owners;
}

template <typename Kind>
void BasicConfiguration<Kind>::ConfigCouple(ICollisionBody* body1, ICollisionBody* body2, Setting setting) {
    RequireNotNull(body1);
    RequireNotNull(body2);
    if (!Kind::Enables(setting)) {
        couples_.Erase(KeyOf(body1, body2));
        return;
    }
    CollisionBody* first = registry_.Find(body1);
    CollisionBody* second = registry_.Find(body2);
    if (first && second) SetCouple(first, second, setting);
}

template <typename Kind>
void BasicConfiguration<Kind>::ConfigElementAgainstAll(ICollisionBody* body, Setting setting) {
    RequireNotNull(body);
    CollisionBody* own = registry_.Find(body);
    if (!own) return;
    const BodySet& bodies = registry_.Bodies();
    SetCouples(setting, bodies.size(), [&](auto visit) {
        for (CollisionBody* other : bodies) {
            if (other != own) visit(own, other);
        }
    });
}

template <typename Kind>
void BasicConfiguration<Kind>::ConfigAllCouples(Setting setting) {
    if (!Kind::Enables(setting)) {
        couples_.Clear();
        return;
    }
    const BodySet& bodies = registry_.Bodies();
    SetCouples(setting, CountAllCouples(bodies.size()), [&](auto visit) { ForEachCouple(bodies, visit); });
}

template <typename Kind>
void BasicConfiguration<Kind>::ConfigIntraOwner(std::uint64_t owner, Setting setting) {
    const BodySet* bodies = registry_.FindOwner(owner);
    if (!bodies) return;
    SetCouples(setting, CountAllCouples(bodies->size()), [&](auto visit) { ForEachCouple(*bodies, visit); });
}

template <typename Kind>
void BasicConfiguration<Kind>::ConfigInterOwners(std::uint64_t owner1,
                                                 std::uint64_t owner2,
                                                 Setting setting) {
    const BodySet* bodies1 = registry_.FindOwner(owner1);
    const BodySet* bodies2 = registry_.FindOwner(owner2);
    if (!bodies1 || !bodies2) return;
    if (owner1 == owner2) {
        // Each body with itself and with those after it: with those before it, it is coupled already.
        SetCouples(setting, bodies1->size() + CountAllCouples(bodies1->size()), [&](auto visit) {
            for (std::size_t i = 0; i < bodies1->size(); ++i) {
                for (std::size_t j = i; j < bodies1->size(); ++j) visit((*bodies1)[i], (*bodies1)[j]);
            }
        });
        return;
    }
    SetCouples(setting, bodies1->size() * bodies2->size(), [&](auto visit) {
        for (CollisionBody* first : *bodies1) {
            for (CollisionBody* second : *bodies2) visit(first, second);
        }
    });
}

template <typename Kind>
auto BasicConfiguration<Kind>::FindCouple(const ICollisionBody* body1, const ICollisionBody* body2) const
    -> const Couple* {
    RequireNotNull(body1);
    RequireNotNull(body2);
    return couples_.Find(KeyOf(body1, body2));
}

template <typename Kind>
std::vector<ICollisionBody*> BasicConfiguration<Kind>::RetrieveElements() const {
    return {registry_.Bodies().begin(), registry_.Bodies().end()};
}

template <typename Kind>
auto BasicConfiguration<Kind>::RetrieveCouples(std::vector<Record>& out) const -> std::vector<Record>& {
    std::vector<Record> pairs(couples_.size());
    ParallelFor(couples_.size(), kChunk, KeyCollectorFunctorAllPairs<Kind>{couples_, pairs});
    out.swap(pairs);
    return out;
}

template <typename Kind>
auto BasicConfiguration<Kind>::RetrieveCouples(std::vector<Record>& out, ICollisionBody* body) const
    -> std::vector<Record>& {
    RequireNotNull(body);
    Combinable<std::vector<std::size_t>> found;
    ParallelFor(couples_.size(), kChunk, KeyCollectorFunctorPairs<Kind>{couples_, body->GetId(), found});
    std::vector<std::size_t> positions;
    found.ForEach([&](const std::vector<std::size_t>& local) {
        positions.insert(positions.end(), local.begin(), local.end());
    });
    std::ranges::sort(positions);
    std::vector<Record> pairs;
    pairs.reserve(positions.size());
    for (const std::size_t i : positions) pairs.push_back(Kind::RecordOf(couples_[i]));
    out.swap(pairs);
    return out;
}

template <typename Kind>
auto BasicConfiguration<Kind>::Clone() const -> Interface* {
    using Configuration = typename Kind::Configuration;
    return std::make_unique<Configuration>(static_cast<const Configuration&>(*this)).release();
}

template <typename Kind>
void BasicConfiguration<Kind>::Append(const BasicConfiguration& other) {
    couples_.ReserveMore(other.couples_.size());
    registry_.Append(other.registry_);
    couples_.InsertAll(std::span(other.couples_.begin(), other.couples_.end()));
}

template <typename Kind>
void BasicConfiguration<Kind>::MergeConfiguration(Interface* other, Setting setting, int /*merge_policy*/) {
    const BasicConfiguration& appended = RequireOwnConfiguration<Kind>(other);
    if (&appended == this) return;
    const std::vector<CollisionBody*> present(registry_.Bodies().begin(), registry_.Bodies().end());
    std::vector<CollisionBody*> added;
    for (CollisionBody* body : appended.registry_.Bodies()) {
        if (!registry_.Find(body)) added.push_back(body);
    }
    if (Kind::Enables(setting))
        couples_.ReserveMore(appended.couples_.size() + added.size() * present.size());
    Append(appended);
    for (CollisionBody* first : added) {
        for (CollisionBody* second : present) SetCouple(first, second, setting);
    }
}

template <typename Kind>
void BasicConfiguration<Kind>::AppendDistinctConfiguration(Interface* other, int /*merge_policy*/) {
    const BasicConfiguration& appended = RequireOwnConfiguration<Kind>(other);
    if (&appended != this) Append(appended);
}

template <typename Kind>
void BasicConfiguration<Kind>::UpdateBodies() {
    const BodySet& bodies = registry_.Bodies();
    ParallelFor(bodies.size(), kChunk, [&bodies](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) bodies[i]->Update();
    });
}

template <typename Kind>
bool BasicConfiguration<Kind>::IsConsistent() const {
    const auto is_present = [this](const CollisionBody* body) { return registry_.Find(body) != nullptr; };
    for (const auto& group : registry_.Owners()) {
        if (!std::ranges::all_of(group.bodies, is_present)) return false;
    }
    return std::ranges::all_of(couples_, [&](const Couple& pair) {
        return registry_.Find(pair.First()) && registry_.Find(pair.Second()) &&
               couples_.Contains(pair.Key()) && pair.Key() == KeyOf(pair.First(), pair.Second());
    });
}

template class BasicConfiguration<CollisionKind>;
template class BasicConfiguration<ProximityKind>;

}  // namespace tarn::details
