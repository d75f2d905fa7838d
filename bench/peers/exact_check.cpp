#include "peers/exact_check.h"

#include "core/plane.h"

#include <CGAL/AABB_traits.h>
#include <CGAL/AABB_tree.h>
#include <CGAL/AABB_triangle_primitive.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace tarn::bench {

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using ExactTriangle = Kernel::Triangle_3;
using Primitive = CGAL::AABB_triangle_primitive<Kernel, std::vector<ExactTriangle>::const_iterator>;
using TreeType = CGAL::AABB_tree<CGAL::AABB_traits<Kernel, Primitive>>;

ExactTriangle ExactTriangleOf(const TriangleData& t) {
    return {{t.v0x, t.v0y, t.v0z}, {t.v1x, t.v1y, t.v1z}, {t.v2x, t.v2y, t.v2z}};
}

/// How far a triangle reaches to both sides of another's plane: the smaller of the two.
double ReachThrough(const TriangleData& plane_triangle, const TriangleData& triangle) {
    const details::Plane plane = details::PlaneOf(plane_triangle);
    const double length = std::sqrt(details::LengthSquared(plane.normal));
    if (!(length > 0.0)) return 0.0;
    double above = 0.0;
    double below = 0.0;
    for (const details::Vector3& v :
         {details::Vertex0(triangle), details::Vertex1(triangle), details::Vertex2(triangle)}) {
        const double height = Dot(plane.normal, v - details::Vertex0(plane_triangle)) / length;
        above = std::max(above, height);
        below = std::max(below, -height);
    }
    return std::min(above, below);
}

}  // namespace

struct ExactMesh::Tree {
    std::vector<ExactTriangle> triangles;
    std::vector<std::size_t> origins;
    TreeType tree;
};

// Triangles without area are no triangles to the exact kernel; they are left out.
ExactMesh::ExactMesh(const std::vector<TriangleData>& world_triangles)
    : triangles_(world_triangles),
      tree_(std::make_unique<Tree>()) {
    for (std::size_t i = 0; i < triangles_.size(); ++i) {
        const ExactTriangle triangle = ExactTriangleOf(triangles_[i]);
        if (triangle.is_degenerate()) continue;
        tree_->triangles.push_back(triangle);
        tree_->origins.push_back(i);
    }
    tree_->tree.insert(tree_->triangles.cbegin(), tree_->triangles.cend());
    tree_->tree.build();
}

ExactMesh::ExactMesh(ExactMesh&&) noexcept = default;

ExactMesh::~ExactMesh() = default;

ExactAnswer CheckExactly(const ExactMesh& first, const ExactMesh& second) {
    ExactAnswer answer;
    if (first.tree().triangles.empty() || second.tree().triangles.empty()) return answer;
    const CGAL::Bbox_3 first_box = first.tree().tree.bbox();
    std::vector<TreeType::Primitive_id> hits;
    for (std::size_t j = 0; j < second.tree().triangles.size(); ++j) {
        const ExactTriangle& query = second.tree().triangles[j];
        if (!CGAL::do_overlap(first_box, query.bbox())) continue;
        hits.clear();
        first.tree().tree.all_intersected_primitives(query, std::back_inserter(hits));
        for (const auto& hit : hits) {
            answer.intersects = true;
            const auto i = static_cast<std::size_t>(std::distance(first.tree().triangles.cbegin(), hit));
            const TriangleData& a = first.triangles()[first.tree().origins[i]];
            const TriangleData& b = second.triangles()[second.tree().origins[j]];
            answer.deepest_crossing =
                std::max(answer.deepest_crossing, std::min(ReachThrough(a, b), ReachThrough(b, a)));
        }
    }
    return answer;
}

namespace {

double LeastSquaredDistance(const std::vector<ExactTriangle>& from, const TreeType& to) {
    double least = std::numeric_limits<double>::infinity();
    for (const ExactTriangle& triangle : from) {
        for (int i = 0; i < 3; ++i) least = std::min(least, to.squared_distance(triangle.vertex(i)));
    }
    return least;
}

}  // namespace

double VertexGap(const ExactMesh& first, const ExactMesh& second) {
    return std::sqrt(std::min(LeastSquaredDistance(first.tree().triangles, second.tree().tree),
                              LeastSquaredDistance(second.tree().triangles, first.tree().tree)));
}

}  // namespace tarn::bench
