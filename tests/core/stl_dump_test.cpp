#include "core/stl_dump.h"

#include "core/aabb_hierarchy.h"
#include "core/plain_tree.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

namespace tarn::details {
namespace {

template <typename Visitor>
std::string DumpOf(const std::vector<Triangle>& triangles,
                   std::uint16_t leaf_number,
                   const MATRIX& placement = {}) {
    const AABBHierarchy hierarchy(test::PointersTo(triangles), leaf_number, &placement);
    std::ostringstream stream;
    Visitor visitor(stream);
    visitor.Visit(nullptr);
    VisitAllNodes(hierarchy, visitor);
    return stream.str();
}

/// The numbers of a dump without its words.
std::vector<double> NumbersOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<double> numbers;
    for (std::string word; stream >> word;) {
        if (word.find_first_of("0123456789") != std::string::npos) numbers.push_back(std::stod(word));
    }
    return numbers;
}

std::size_t CountFacets(const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find("endfacet\n", at)) != std::string::npos; ++at) ++count;
    return count;
}

const Triangle kFlat({0, 0, 0, 1, 0, 0, 0, 1, 0});
const Triangle kTall({1, 2, 3, 2, 4, 6, 2, 2, 3});

TEST(StlDump, WritesATriangleInWorldCoordinatesAsAFacet) {
    EXPECT_EQ(DumpOf<DumpTrianglesVisitor>({kFlat}, 5, {0, 0, 2, 7, 0.1234567, 0, 0, 0, 0, 1e9, 0, 0}),
              "facet normal 1.23457e+08 0 0\nouter loop\nvertex 7 0 0\nvertex 7 0.123457 0\n"
              "vertex 7 0 1e+09\nendloop\nendfacet\n");
}

TEST(StlDump, EndsALeafAtItsFirstInvalidTriangle) {
    const Triangle bad({0, 0, 0, 0, 0, 0, 0, 1, 0});
    const Triangle apart({0, 0, 50, 1, 0, 50, 0, 1, 50});
    // The upper leaf is written whole, the lower one is cut short.
    EXPECT_EQ(CountFacets(DumpOf<DumpTrianglesVisitor>({apart, kFlat, bad, kFlat}, 3)), 2U);
}

TEST(StlDump, WritesTheBoxesOfLeavesOnly) {
    EXPECT_EQ(CountFacets(DumpOf<DumpAABBVisitor>({kTall, Triangle({50, 0, 0, 52, 3, 4, 50, 0, 2})}, 1)),
              24U);
    EXPECT_EQ(CountFacets(DumpOf<DumpAABBVisitor>({kFlat}, 1)), 4U)
        << "the faces that span the flat axis are left out";
    for (const double x : {0.0, std::nan("")})
        EXPECT_EQ(DumpOf<DumpAABBVisitor>({}, 1, {1, 0, 0, x, 0, 1, 0, 0, 0, 0, 1, 0}), "");
}

TEST(StlDump, WritesBoxTrianglesOutwardInTheirOrder) {
    // clang-format off
    const std::vector<double> normals_and_vertices{
        0, -3, 0,  1, 2, 3,  2, 2, 6,  1, 2, 6,    0, -3, 0,  1, 2, 3,  2, 2, 3,  2, 2, 6,
        6, 0, 0,   2, 2, 3,  2, 4, 3,  2, 2, 6,    6, 0, 0,   2, 4, 3,  2, 4, 6,  2, 2, 6,
        0, 3, 0,   2, 4, 6,  2, 4, 3,  1, 4, 3,    0, 3, 0,   2, 4, 6,  1, 4, 3,  1, 4, 6,
        -6, 0, 0,  1, 2, 6,  1, 4, 3,  1, 2, 3,    -6, 0, 0,  1, 2, 6,  1, 4, 6,  1, 4, 3,
        0, 0, -2,  1, 2, 3,  1, 4, 3,  2, 2, 3,    0, 0, -2,  1, 4, 3,  2, 4, 3,  2, 2, 3,
        0, 0, 2,   1, 2, 6,  2, 2, 6,  1, 4, 6,    0, 0, 2,   2, 2, 6,  2, 4, 6,  1, 4, 6};
    // clang-format on
    EXPECT_EQ(NumbersOf(DumpOf<DumpAABBVisitor>({kTall}, 1)), normals_and_vertices);
}

}  // namespace
}  // namespace tarn::details
