#pragma once

#include "core/aabb_hierarchy_visitor.h"

#include <iosfwd>

namespace tarn::details {

class AABBHierarchy;

/// Writes the world triangles of the leaves that it visits as ASCII STL facets. The first invalid triangle of
/// a leaf ends that leaf: what follows it is not written.
class DumpTrianglesVisitor final : public AABBHierarchyNodeVisitor {
public:
    explicit DumpTrianglesVisitor(std::ostream& stream) : stream_(stream) {}
    void Visit(const AABBHierarchyNode* node) override;

private:
    std::ostream& stream_;
};

/// Writes the world boxes of the leaves that it visits as ASCII STL facets, twelve a box. Facets that span a
/// very thin axis are invalid triangles and are left out; an empty leaf writes nothing.
class DumpAABBVisitor final : public AABBHierarchyNodeVisitor {
public:
    explicit DumpAABBVisitor(std::ostream& stream) : stream_(stream) {}
    void Visit(const AABBHierarchyNode* node) override;

private:
    std::ostream& stream_;
};

/// Visits all nodes of a hierarchy in pre-order, the root included.
void VisitAllNodes(const AABBHierarchy& hierarchy, AABBHierarchyNodeVisitor& visitor);

}  // namespace tarn::details
