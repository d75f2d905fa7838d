#include "core/stl_dump.h"

#include "core/aabb_hierarchy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

namespace tarn::details {
namespace {

std::size_t CountFacets(const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = text.find("endfacet\n"); at != std::string::npos;
         at = text.find("endfacet\n", at + 1)) {
        ++count;
    }
    return count;
}

template <typename Visitor>
std::string DumpOf(const std::vector<Triangle>& triangles,
                   std::uint16_t leaf_number,
                   const MATRIX& placement = {}) {
    std::vector<const Triangle*> pointers;
    pointers.reserve(triangles.size());
    for (const Triangle& triangle : triangles) pointers.push_back(&triangle);
    const AABBHierarchy hierarchy(pointers, leaf_number, &placement);
    std::ostringstream stream;
    Visitor visitor(stream);
    visitor.Visit(nullptr);
    VisitAllNodes(hierarchy, visitor);
    return stream.str();
}

const Triangle kFlat({0, 0, 0, 1, 0, 0, 0, 1, 0});

TEST(StlDump, WritesATriangleAsAFacet) {
    EXPECT_EQ(
        DumpOf<DumpTrianglesVisitor>({kFlat}, 5),
        "facet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\nendfacet\n");
    EXPECT_EQ(DumpOf<DumpTrianglesVisitor>({kFlat}, 5, {0, 0, 2, 7, 0.1234567, 0, 0, 0, 0, 1e9, 0, 0}),
              "facet normal 1.23457e+08 0 0\nouter loop\nvertex 7 0 0\nvertex 7 0.123457 0\nvertex 7 0 "
              "1e+09\nendloop\n"
              "endfacet\n")
        << "world coordinates in the stream's own format";
}

TEST(StlDump, EndsALeafAtItsFirstInvalidTriangle) {
    Triangle bad = kFlat;
    bad.v1x = 0;
    Triangle apart = kFlat;
    apart.v0z = apart.v1z = apart.v2z = 50;
    EXPECT_EQ(CountFacets(DumpOf<DumpTrianglesVisitor>({kFlat, bad, kFlat}, 5)), 1U);
    // The upper leaf is written whole, the lower one is cut short.
    EXPECT_EQ(CountFacets(DumpOf<DumpTrianglesVisitor>({apart, kFlat, bad, kFlat}, 3)), 2U);
}

TEST(StlDump, WritesTheBoxesOfLeavesOnly) {
    const Triangle tall({0, 0, 0, 2, 3, 4, 2, 0, 0});
    Triangle apart = tall;
    apart.v0x = apart.v1x = apart.v2x = 50;
    apart.v1x = 52;
    EXPECT_EQ(CountFacets(DumpOf<DumpAABBVisitor>({tall}, 1)), 12U);
    EXPECT_EQ(CountFacets(DumpOf<DumpAABBVisitor>({tall, apart}, 1)), 24U);
    EXPECT_EQ(CountFacets(DumpOf<DumpAABBVisitor>({kFlat}, 1)), 4U)
        << "the faces that span the flat axis are left out";
    EXPECT_EQ(DumpOf<DumpAABBVisitor>({}, 1), "");
    EXPECT_EQ(DumpOf<DumpAABBVisitor>({}, 1, {1, 0, 0, std::nan(""), 0, 1, 0, 0, 0, 0, 1, 0}), "");
}

TEST(StlDump, WritesBoxTrianglesOutwardInTheirOrder) {
    const std::string text = DumpOf<DumpAABBVisitor>({Triangle({1, 2, 3, 2, 4, 6, 2, 2, 3})}, 1);
    const std::vector<std::string> normals{"0 -3 0", "0 -3 -0", "6 -0 0", "6 0 -0", "-0 3 0", "0 3 0",
                                           "-6 0 0", "-6 0 0",  "0 0 -2", "0 0 -2", "0 0 2",  "0 0 2"};
    std::istringstream lines(text);
    std::size_t facet = 0;
    std::vector<std::string> first_vertices;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("facet normal ")) {
            ASSERT_LT(facet, normals.size());
            std::istringstream written(line.substr(13));
            std::istringstream expected(normals[facet++]);
            for (double a = 0, b = 0; (written >> a) && (expected >> b);)
                EXPECT_EQ(a, b) << "facet " << facet;
        }
        if (line.starts_with("vertex ") && first_vertices.size() < facet)
            first_vertices.push_back(line.substr(7));
    }
    EXPECT_EQ(first_vertices,
              (std::vector<std::string>{"1 2 3", "1 2 3", "2 2 3", "2 4 3", "2 4 6", "2 4 6", "1 2 6",
                                        "1 2 6", "1 2 3", "1 4 3", "1 2 6", "2 2 6"}));
}

}  // namespace
}  // namespace tarn::details
