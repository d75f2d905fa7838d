#include "core/stl_dump.h"

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "core/plane.h"
#include "core/triangle.h"

#include <array>
#include <ostream>

namespace tarn::details {

namespace {

void WriteVertex(std::ostream& stream, const Vector3& v) {
    stream << "vertex " << v.x << ' ' << v.y << ' ' << v.z << '\n';
}

void WriteFacet(std::ostream& stream, const TriangleData& triangle) {
    const Vector3 normal = Normal(triangle);
    stream << "facet normal " << normal.x << ' ' << normal.y << ' ' << normal.z << '\n';
    stream << "outer loop\n";
    WriteVertex(stream, Vertex0(triangle));
    WriteVertex(stream, Vertex1(triangle));
    WriteVertex(stream, Vertex2(triangle));
    stream << "endloop\n";
    stream << "endfacet\n";
}

/// A box as twelve triangles. Each corner is three bits, x the lowest: a set bit takes the maximum of its
/// axis.
constexpr std::array<std::array<unsigned, 3>, 12> kBoxCorners{{
    {0b000, 0b101, 0b100},  // y min
    {0b000, 0b001, 0b101},
    {0b001, 0b011, 0b101},  // x max
    {0b011, 0b111, 0b101},
    {0b111, 0b011, 0b010},  // y max
    {0b111, 0b010, 0b110},
    {0b100, 0b010, 0b000},  // x min
    {0b100, 0b110, 0b010},
    {0b000, 0b010, 0b001},  // z min
    {0b010, 0b011, 0b001},
    {0b100, 0b101, 0b110},  // z max
    {0b101, 0b111, 0b110},
}};

Vector3 Corner(const Box& box, unsigned bits) {
    return {(bits & 0b001U) != 0 ? box.max.x : box.min.x, (bits & 0b010U) != 0 ? box.max.y : box.min.y,
            (bits & 0b100U) != 0 ? box.max.z : box.min.z};
}

TriangleData BoxTriangle(const Box& box, const std::array<unsigned, 3>& corners) {
    const Vector3 v0 = Corner(box, corners[0]);
    const Vector3 v1 = Corner(box, corners[1]);
    const Vector3 v2 = Corner(box, corners[2]);
    return {v0.x, v0.y, v0.z, v1.x, v1.y, v1.z, v2.x, v2.y, v2.z};
}

}  // namespace

void DumpTrianglesVisitor::Visit(const AABBHierarchyNode* node) {
    if (!node) return;
    for (const Triangle& triangle : node->WorldTriangles()) {
        if (!IsValid(triangle)) return;
        WriteFacet(stream_, triangle);
    }
}

void DumpAABBVisitor::Visit(const AABBHierarchyNode* node) {
    if (!node || !node->IsLeaf() || node->IsEmpty()) return;
    const Box& box = node->WorldBox();
    for (const auto& corners : kBoxCorners) {
        const TriangleData triangle = BoxTriangle(box, corners);
        if (IsValid(triangle)) WriteFacet(stream_, triangle);
    }
}

void VisitAllNodes(const AABBHierarchy& hierarchy, AABBHierarchyNodeVisitor& visitor) {
    visitor.Visit(&hierarchy.Root());
    hierarchy.Root().Accept(visitor);
}

}  // namespace tarn::details
