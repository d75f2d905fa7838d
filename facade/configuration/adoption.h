#pragma once

#include "registry/collision_element.h"
#include "registry/collision_owner.h"

#include "tarn/collision_body.h"
#include "tarn/triangle_data.h"

#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// An element of its own, with an owner of its own, for a body that came back from a scene.
inline std::shared_ptr<CollisionElement> MakeElementOf(const tarn::ICollisionBody& body) {
    std::vector<tarn::TriangleData> triangles;
    for (const tarn::ICollisionElement* mesh : body.GetElements()) {
        const std::vector<tarn::TriangleData> more = mesh->GetTriangles();
        triangles.insert(triangles.end(), more.begin(), more.end());
    }
    return std::make_shared<CollisionElement>(body.GetName(), body.GetId(),
                                              std::make_shared<CollisionOwner>(body.GetOwner()),
                                              std::move(triangles));
}

/// Rebuilds the elements and pairs of a configuration that came back from a scene. `add(element)` adds an
/// element without pairs, `set(first, second, pair)` sets a pair as the retrieved one says.
template <typename Interface, typename Pair, typename Add, typename Set>
void Adopt(const Interface& retrieved, Add add, Set set) {
    using Element = std::shared_ptr<ICollisionConfigurationElement>;
    std::unordered_map<const tarn::ICollisionBody*, Element> elements;
    const std::vector<tarn::ICollisionBody*> bodies = retrieved.RetrieveElements();
    for (const tarn::ICollisionBody* body : bodies) {
        const Element element = MakeElementOf(*body);
        add(element);
        elements.emplace(body, element);
    }
    // Body by body, each with its pairs: that fixes the order in which they are listed here.
    std::vector<Pair> pairs;
    std::unordered_map<const tarn::ICollisionBody*, std::vector<const Pair*>> pairs_of;
    for (const Pair& pair : retrieved.RetrieveCouples(pairs)) {
        pairs_of[pair.First].push_back(&pair);
        pairs_of[pair.Second].push_back(&pair);
    }
    for (const tarn::ICollisionBody* body : bodies) {
        for (const Pair* pair : pairs_of[body])
            set(elements.at(pair->First), elements.at(pair->Second), *pair);
    }
}

}  // namespace Ostrel::Quarrix::Collisions
