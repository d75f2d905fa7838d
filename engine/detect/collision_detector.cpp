#include "detect/collision_detector.h"

#include "config/body_pair.h"
#include "core/collision_body.h"
#include "core/parallel.h"
#include "core/stl_dump.h"
#include "detect/hierarchy_traversal.h"

#include "tarn/exception.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace tarn::details {

namespace {

/// Couples that a task checks without being split further. A couple whose boxes are apart takes some tens of
/// nanoseconds, one that is close takes microseconds to milliseconds and deserves a task of its own.
constexpr std::size_t kCoupleChunk = 1;

/// How a policy runs.
struct Procedure {
    bool stops_at_first_hit;
    bool records_triangles;
};

Procedure ProcedureOf(CheckPolicy policy) {
    switch (policy) {
        case CheckPolicy::FirstInterferenceStop:
            return {true, false};
        case CheckPolicy::FirstInterferenceStopWithTriangles:
            return {true, true};
        case CheckPolicy::AllInterferences:
            return {false, false};
        case CheckPolicy::AllInterferencesWithTriangles:
            return {false, true};
    }
    throw InvalidArgumentException();
}

bool IsUnbuilt(const CollisionBody& body) {
    return !body.Hierarchy();
}

[[noreturn]] void ThrowUnbuilt(const CollisionBody& body) {
    throw LogicException(
        "Body '" + body.GetName() + "' (id " + std::to_string(body.GetId()) +
        ") has no hierarchy: call SetLeafNumber on it first, after the last change of its elements");
}

/// Throws for the first couple with a body that was never built. Bodies are few and couples many, so the
/// couples are looked at only where some body is unbuilt.
void RequireBuiltCouples(const ICollisionConfiguration& configuration, const CoupleTable& couples) {
    const auto is_built = [](const ICollisionBody* body) {
        const auto* own = dynamic_cast<const CollisionBody*>(body);
        return own && !IsUnbuilt(*own);
    };
    if (std::ranges::all_of(configuration.RetrieveElements(), is_built)) return;
    for (const KeyBodyPair& couple : couples) {
        if (IsUnbuilt(*couple.First())) ThrowUnbuilt(*couple.First());
        if (IsUnbuilt(*couple.Second())) ThrowUnbuilt(*couple.Second());
    }
}

/// Brings the placements up to date and returns the couples, all ready to be checked.
const CoupleTable& PrepareCouples(ICollisionConfiguration& configuration) {
    const CoupleTable& couples = dynamic_cast<const IPairsProvider&>(configuration).Pairs();
    RequireBuiltCouples(configuration, couples);
    return couples;
}

/// An interfering couple, by its position in the couple order.
struct CoupleHit {
    std::size_t position;
    TriangleHit triangles;
};

/// Checks all couples, or until the first hit. Returns the hits in couple order.
std::vector<CoupleHit> CheckCouples(const CoupleTable& couples, bool stops_at_first_hit) {
    Combinable<std::vector<CoupleHit>> hits_per_thread;
    CancellationSource cancellation;
    ParallelFor(couples.size(), kCoupleChunk, [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end && !cancellation.IsCancelled(); ++i) {
            const KeyBodyPair& couple = couples[i];
            const TriangleHit hit = FindFirstHit(*couple.First()->Hierarchy(), *couple.Second()->Hierarchy());
            if (!hit) continue;
            if (stops_at_first_hit) cancellation.Cancel();
            hits_per_thread.Local().push_back({i, hit});
        }
    });
    std::vector<CoupleHit> hits;
    hits_per_thread.ForEach([&hits](const std::vector<CoupleHit>& local) {
        hits.insert(hits.end(), local.begin(), local.end());
    });
    std::ranges::sort(hits, {}, &CoupleHit::position);
    return hits;
}

CollisionPairResult PairResultOf(const KeyBodyPair& couple, const TriangleHit& hit, bool records_triangles) {
    CollisionPairResult result{couple.First(), couple.Second(), {}};
    if (records_triangles) result.Triangles.push_back({*hit.first, *hit.second});
    return result;
}

std::unique_ptr<AABBHierarchyNodeVisitor> MakeDumpVisitor(DumpType type, std::ostream& stream) {
    if (type == DumpType::Triangles) return std::make_unique<DumpTrianglesVisitor>(stream);
    return std::make_unique<DumpAABBVisitor>(stream);
}

}  // namespace

bool CollisionDetector::Check(ICollisionConfiguration& configuration) {
    configuration.UpdateBodies();
    return !CheckCouples(PrepareCouples(configuration), true).empty();
}

CollisionResult& CollisionDetector::Check(CollisionResult& result,
                                          ICollisionConfiguration& configuration,
                                          CheckPolicy policy) {
    configuration.UpdateBodies();
    const Procedure procedure = ProcedureOf(policy);
    const CoupleTable& couples = PrepareCouples(configuration);
    std::vector<CoupleHit> hits = CheckCouples(couples, procedure.stops_at_first_hit);
    // Several threads may have found a hit before they heard of the first.
    if (procedure.stops_at_first_hit && hits.size() > 1) hits.resize(1);

    CollisionResult checked;
    checked.Pairs.reserve(hits.size());
    for (const CoupleHit& hit : hits) {
        checked.Pairs.push_back(
            PairResultOf(couples[hit.position], hit.triangles, procedure.records_triangles));
    }
    result = std::move(checked);
    return result;
}

void CollisionDetector::Dump(ICollisionConfiguration& configuration, DumpType type, std::ostream& stream) {
    configuration.UpdateBodies();
    std::vector<const CollisionBody*> bodies;
    for (ICollisionBody* body : configuration.RetrieveElements()) {
        bodies.push_back(&dynamic_cast<const CollisionBody&>(*body));
        if (IsUnbuilt(*bodies.back())) ThrowUnbuilt(*bodies.back());
    }
    const std::unique_ptr<AABBHierarchyNodeVisitor> visitor = MakeDumpVisitor(type, stream);
    stream << "solid configuration\n";
    for (const CollisionBody* body : bodies) VisitAllNodes(*body->Hierarchy(), *visitor);
    stream << "endsolid";
    stream.flush();
}

}  // namespace tarn::details
