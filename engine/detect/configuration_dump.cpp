#include "detect/configuration_dump.h"

#include "core/collision_body.h"
#include "core/stl_dump.h"
#include "detect/check_preparation.h"

#include <memory>
#include <ostream>

namespace tarn::details {

namespace {

std::unique_ptr<AABBHierarchyNodeVisitor> MakeDumpVisitor(DumpType type, std::ostream& stream) {
    if (type == DumpType::Triangles) return std::make_unique<DumpTrianglesVisitor>(stream);
    return std::make_unique<DumpAABBVisitor>(stream);
}

}  // namespace

void DumpBodies(const std::vector<ICollisionBody*>& bodies, DumpType type, std::ostream& stream) {
    std::vector<const CollisionBody*> own_bodies;
    for (ICollisionBody* body : bodies) {
        own_bodies.push_back(&dynamic_cast<const CollisionBody&>(*body));
        RequireBuilt(*own_bodies.back());
    }
    const std::unique_ptr<AABBHierarchyNodeVisitor> visitor = MakeDumpVisitor(type, stream);
    stream << "solid configuration\n";
    for (const CollisionBody* body : own_bodies) VisitAllNodes(*body->Hierarchy(), *visitor);
    stream << "endsolid";
    stream.flush();
}

}  // namespace tarn::details
