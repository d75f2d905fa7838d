#include "core/aabb_hierarchy.h"

#include "core/parallel.h"
#include "core/plain_tree.h"
#include "support/meshes.h"
#include "support/placements.h"

#include "tarn/thread_limit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <random>
#include <vector>

namespace tarn::details {
namespace {

using test::Mesh;
using test::PlainNode;

std::vector<Triangle> TrianglesOf(const Mesh& mesh) {
    return {mesh.begin(), mesh.end()};
}

std::vector<const Triangle*> PointersTo(const std::vector<Triangle>& triangles) {
    std::vector<const Triangle*> pointers;
    pointers.reserve(triangles.size());
    for (const Triangle& triangle : triangles) pointers.push_back(&triangle);
    return pointers;
}

template <typename Value>
bool SameBits(const Value& a, const Value& b) {
    return std::memcmp(&a, &b, sizeof(Value)) == 0;
}

void ExpectSameTree(const AABBHierarchyNode* node, const PlainNode& plain) {
    ASSERT_TRUE(SameBits(node->LocalBox(), plain.box));
    ASSERT_EQ(node->IsLeaf(), plain.IsLeaf());
    if (node->IsLeaf()) {
        ASSERT_TRUE(std::ranges::equal(node->LocalTriangles(), plain.triangles, SameBits<Triangle>));
        return;
    }
    ASSERT_NO_FATAL_FAILURE(ExpectSameTree(node->FirstChild(), *plain.first));
    ASSERT_NO_FATAL_FAILURE(ExpectSameTree(node->SecondChild(), *plain.second));
}

void ExpectBuiltByTheRules(const Mesh& mesh, std::uint16_t leaf_number) {
    const std::vector<Triangle> triangles = TrianglesOf(mesh);
    const MATRIX placement;
    const AABBHierarchy hierarchy(PointersTo(triangles), leaf_number, &placement);
    EXPECT_TRUE(hierarchy.IsConsistent());
    ASSERT_NO_FATAL_FAILURE(ExpectSameTree(&hierarchy.Root(), *test::BuildPlainTree(triangles, leaf_number)));
}

TEST(AABBHierarchy, IsBuiltByTheRulesToTheLastBit) {
    std::mt19937_64 random(1);
    for (const std::uint16_t leaf_number : std::initializer_list<std::uint16_t>{1, 2, 5, 64}) {
        SCOPED_TRACE(leaf_number);
        for (const std::size_t count : {1U, 5U, 6U, 100U, 3000U}) {
            ExpectBuiltByTheRules(test::TriangleSoup(random, count, 10.0, 3.0), leaf_number);
            ExpectBuiltByTheRules(test::LatticeSoup(random, count, 3, 0.1), leaf_number);
        }
        ExpectBuiltByTheRules(test::GridMesh(7.0, 20), leaf_number);
        ExpectBuiltByTheRules(test::BumpyBallMesh(5.0, 30), leaf_number);
    }
}

TEST(AABBHierarchy, IsTheSameWhateverTheThreads) {
    // Large enough for tasks at several depths.
    const Mesh mesh = test::BumpyBallMesh(5.0, 60);
    for (const std::size_t threads : {1U, 2U, 8U}) {
        RunWithThreadLimit(threads, [&] { ExpectBuiltByTheRules(mesh, 5); });
    }
}

// Centroids of which the mean rounds to the value itself, below it, or is no number.
TEST(AABBHierarchy, PeelsCoincidingTrianglesFromTheBack) {
    for (const double offset : {0.0, 0.1, 1e6 + 0.1, -7.3}) {
        const Mesh one = test::BoxMesh(offset, offset, offset, offset + 3, offset + 2, offset + 1);
        for (const std::size_t count : {6U, 7U, 50U, 1000U}) {
            Mesh mesh(count, one[0]);
            SCOPED_TRACE(testing::Message() << count << " at " << offset);
            ExpectBuiltByTheRules(mesh, 1);
            ExpectBuiltByTheRules(mesh, 5);
            // Others among them end a run of one-sided splits.
            mesh[count / 2] = one[1];
            mesh[count - 1].v0x += 20;
            ExpectBuiltByTheRules(mesh, 5);
        }
    }
}

TEST(AABBHierarchy, TakesInfiniteAndHugeCoordinates) {
    std::mt19937_64 random(2);
    const double infinity = std::numeric_limits<double>::infinity();
    Mesh mesh = test::TriangleSoup(random, 200, 10.0, 3.0);
    for (std::size_t i = 0; i < mesh.size(); i += 7) mesh[i].v0x = infinity;
    ExpectBuiltByTheRules(mesh, 5);
    for (std::size_t i = 0; i < mesh.size(); i += 5) mesh[i].v1x = -infinity;  // centroids that are NaN
    ExpectBuiltByTheRules(mesh, 5);
    for (TriangleData& triangle : mesh) triangle.v2y *= 1e308;
    ExpectBuiltByTheRules(mesh, 3);
}

// A hundred thousand coinciding triangles make a tree of depth n / leaf number.
TEST(AABBHierarchy, SurvivesTreesAsDeepAsTheyGet) {
    constexpr std::size_t kCount = 100'000;
    const std::vector<Triangle> triangles(kCount, Triangle({0, 0, 0, 1, 0, 0, 0, 1, 0}));
    MATRIX placement;
    for (const std::uint16_t leaf_number : std::initializer_list<std::uint16_t>{1, 5}) {
        AABBHierarchy hierarchy(PointersTo(triangles), leaf_number, &placement);
        EXPECT_TRUE(hierarchy.IsConsistent());
        EXPECT_EQ(hierarchy.Nodes().size(), 2 * kCount / leaf_number - 1);
        EXPECT_EQ(hierarchy.Root().Statistics().total_triangles, kCount);
        std::vector<const AABBHierarchyNode*> walked;
        NodePointerCollectorVisitor collector(walked);
        hierarchy.Root().Accept(collector);
        EXPECT_EQ(walked.size(), hierarchy.Nodes().size() - 1);
        hierarchy.MarkStale();
        placement = test::Translation(1, 2, 3);
        EXPECT_EQ(walked.back()->WorldBox().max.x, 2);
    }
}

TEST(AABBHierarchy, WalksInPreOrderAndCountsAlongFirstChildren) {
    const std::vector<Triangle> triangles = TrianglesOf(test::GridMesh(7.0, 3));
    const MATRIX placement;
    const AABBHierarchy hierarchy(PointersTo(triangles), 4, &placement);
    std::vector<const AABBHierarchyNode*> walked;
    NodePointerCollectorVisitor collector(walked);
    collector.Visit(nullptr);
    collector.Visit(&hierarchy.Root());
    hierarchy.Root().Accept(collector);

    std::vector<const AABBHierarchyNode*> expected;
    const auto walk = [&](const auto& self, const AABBHierarchyNode* node) -> void {
        expected.push_back(node);
        if (node->IsLeaf()) return;
        self(self, node->FirstChild());
        self(self, node->SecondChild());
    };
    walk(walk, &hierarchy.Root());
    EXPECT_EQ(walked, expected);

    for (const AABBHierarchyNode* node : expected) {
        const NodeStatistics statistics = node->Statistics();
        if (node->IsLeaf()) {
            EXPECT_EQ(statistics.depth, 0U);
            EXPECT_EQ(statistics.own_triangles, node->LocalTriangles().size());
            EXPECT_EQ(statistics.total_triangles, statistics.own_triangles);
        } else {
            EXPECT_EQ(statistics.depth, node->FirstChild()->Statistics().depth + 1);
            EXPECT_EQ(statistics.own_triangles, 0U);
            EXPECT_EQ(statistics.total_triangles, node->FirstChild()->Statistics().total_triangles +
                                                      node->SecondChild()->Statistics().total_triangles);
        }
    }
}

// Boxes hold their triangles and nest without a margin, whatever the placement: filters build on that.
TEST(AABBHierarchy, WorldBoxesHoldTheirTrianglesAndNest) {
    std::mt19937_64 random(3);
    const std::vector<Triangle> triangles = TrianglesOf(test::TriangleSoup(random, 500, 10.0, 3.0));
    MATRIX placement;
    AABBHierarchy hierarchy(PointersTo(triangles), 5, &placement);
    const auto inside = [](const Vector3& p, const Box& box) {
        return p.x >= box.min.x && p.y >= box.min.y && p.z >= box.min.z && p.x <= box.max.x &&
               p.y <= box.max.y && p.z <= box.max.z;
    };
    for (int move = 0; move < 60; ++move) {
        SCOPED_TRACE(move);
        placement = test::RandomPlacement(random, 100.0);
        hierarchy.MarkStale();
        for (const AABBHierarchyNode& node : hierarchy.Nodes()) {
            const Box& box = node.WorldBox();
            EXPECT_TRUE(SameBits(box.extent_sum, node.LocalBox().extent_sum));
            for (const Triangle& triangle : node.WorldTriangles()) {
                ASSERT_TRUE(inside(Vertex0(triangle), box) && inside(Vertex1(triangle), box) &&
                            inside(Vertex2(triangle), box));
            }
            if (node.IsLeaf()) continue;
            for (const AABBHierarchyNode* child : {node.FirstChild(), node.SecondChild()}) {
                ASSERT_TRUE(inside(child->WorldBox().min, box) && inside(child->WorldBox().max, box));
            }
        }
    }
}

TEST(AABBHierarchy, RefreshesWhatAMoveMadeStaleAndNothingElse) {
    const std::vector<Triangle> triangles{Triangle({0, 0, 0, 2, 0, 0, 0, 1, 1})};
    MATRIX placement{0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0};
    AABBHierarchy hierarchy(PointersTo(triangles), 5, &placement);
    const AABBHierarchyNode& root = hierarchy.Root();
    EXPECT_TRUE(SameBits(root.WorldBox(), Box{{-1, 0, 0}, {0, 2, 1}, 4}));
    EXPECT_TRUE(SameBits(root.WorldTriangles()[0], Triangle({0, 0, 0, 0, 2, 0, -1, 0, 1})));

    placement = test::Translation(10, 20, 30);
    EXPECT_EQ(root.WorldBox().min.x, -1) << "a placement takes effect when the tree is marked";
    hierarchy.MarkStale();
    EXPECT_TRUE(SameBits(root.WorldBox(), Box{{10, 20, 30}, {12, 21, 31}, 4}));
    EXPECT_EQ(root.WorldTriangles()[0].v2z, 31);
}

TEST(AABBHierarchy, WidensFlatTriangles) {
    const std::vector<Triangle> triangles{Triangle({0, 0, 0, 1, 0, 0, 0, 1, 0})};
    const MATRIX placement;
    const AABBHierarchy hierarchy(PointersTo(triangles), 1, &placement);
    EXPECT_EQ(hierarchy.Root().LocalBox().min.z, -1e-6);
    EXPECT_EQ(hierarchy.Root().LocalBox().max.z, 1e-6);
}

TEST(AABBHierarchy, IsEmptyWithoutTrianglesUnderAnyPlacement) {
    MATRIX placement;
    AABBHierarchy hierarchy({}, 5, &placement);
    EXPECT_TRUE(hierarchy.IsConsistent());
    for (const double x : {0.0, 1e300, std::nan("")}) {
        placement = test::Translation(x, 0, 0);
        hierarchy.MarkStale();
        EXPECT_TRUE(hierarchy.Root().IsEmpty());
        EXPECT_FALSE(
            Overlap(hierarchy.Root().WorldBox(), Box{{-1e300, -1e300, -1e300}, {1e300, 1e300, 1e300}, 0}));
        EXPECT_TRUE(hierarchy.Root().WorldTriangles().empty());
        EXPECT_EQ(hierarchy.Root().Statistics().total_triangles, 0U);
    }
}

}  // namespace
}  // namespace tarn::details
