#pragma once

#include <vector>

namespace tarn::details {

class AABBHierarchyNode;

/// What a walk over a hierarchy hands its nodes to.
class AABBHierarchyNodeVisitor {
public:
    virtual ~AABBHierarchyNodeVisitor() = default;
    /// `node` may be null.
    virtual void Visit(const AABBHierarchyNode* node) = 0;
};

/// Appends every node that is not null to a vector, which it does not own.
class NodePointerCollectorVisitor final : public AABBHierarchyNodeVisitor {
public:
    explicit NodePointerCollectorVisitor(std::vector<const AABBHierarchyNode*>& nodes) : nodes_(&nodes) {}

    void Visit(const AABBHierarchyNode* node) override {
        if (node) nodes_->push_back(node);
    }

private:
    std::vector<const AABBHierarchyNode*>* nodes_;
};

}  // namespace tarn::details
