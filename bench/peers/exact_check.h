#pragma once

#include "tarn/triangle_data.h"

#include <memory>
#include <vector>

namespace tarn::bench {

/// A mesh in world coordinates for exact questions. The coordinates are taken as they are; every decision
/// about them is made with exact predicates, so contact counts, however slight.
class ExactMesh {
public:
    explicit ExactMesh(const std::vector<TriangleData>& world_triangles);
    ExactMesh(ExactMesh&&) noexcept;
    ~ExactMesh();

    struct Tree;
    const Tree& tree() const { return *tree_; }
    const std::vector<TriangleData>& triangles() const { return triangles_; }

private:
    std::vector<TriangleData> triangles_;
    std::unique_ptr<Tree> tree_;
};

struct ExactAnswer {
    bool intersects = false;
    /// How far triangles reach through one another at most, over all intersecting pairs, in length units: 0
    /// for contact. Computed in doubles; it explains differences and decides nothing.
    double deepest_crossing = 0.0;
};

/// Whether any two triangles of the meshes have a point in common, and how deep they cross.
ExactAnswer CheckExactly(const ExactMesh& first, const ExactMesh& second);

/// The least distance of a vertex of either mesh from the other mesh, in doubles: between flush faces, the
/// gap.
double VertexGap(const ExactMesh& first, const ExactMesh& second);

}  // namespace tarn::bench
