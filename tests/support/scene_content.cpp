#include "support/scene_content.h"

#include "core/collision_body.h"

#include <algorithm>
#include <bit>

namespace tarn::test {

namespace {

std::uint64_t ClearanceOf(const CollisionPair& /*couple*/) {
    return 0;
}

std::uint64_t ClearanceOf(const ProximityPair& couple) {
    return std::bit_cast<std::uint64_t>(couple.Clearance);
}

BodyContent ContentOf(const ICollisionBody& body) {
    BodyContent content{body.GetId(), body.GetOwner(), body.GetName(), body.GetStatistics().leaf_number, {}};
    const auto* own = dynamic_cast<const details::CollisionBody*>(&body);
    if (!own || !own->Hierarchy()) return content;
    for (const details::AABBHierarchyNode& node : own->Hierarchy()->Nodes()) {
        for (const TriangleData& triangle : node.LocalTriangles())
            content.triangles.push_back(std::bit_cast<std::array<std::uint64_t, 9>>(triangle));
    }
    std::ranges::sort(content.triangles);
    return content;
}

template <typename Couple, typename Configuration>
SceneContent ContentOfAny(const Configuration& configuration) {
    SceneContent content;
    for (const ICollisionBody* body : configuration.RetrieveElements())
        content.bodies.push_back(ContentOf(*body));
    std::vector<Couple> couples;
    for (const Couple& couple : configuration.RetrieveCouples(couples))
        content.couples.push_back({couple.First->GetId(), couple.Second->GetId(), ClearanceOf(couple)});
    return content;
}

}  // namespace

SceneContent ContentOf(const ICollisionConfiguration& configuration) {
    return ContentOfAny<CollisionPair>(configuration);
}

SceneContent ContentOf(const IProximityConfiguration& configuration) {
    return ContentOfAny<ProximityPair>(configuration);
}

}  // namespace tarn::test
