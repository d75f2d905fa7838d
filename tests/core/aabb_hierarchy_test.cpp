#include "core/aabb_hierarchy.h"

#include "core/parallel.h"
#include "core/plain_tree.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/same_bits.h"

#include "tarn/thread_limit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <random>
#include <vector>

namespace tarn::details {
namespace {

using test::Mesh;
using test::PlainNode;
using test::SameBits;

/// A hierarchy over a mesh, with the placement that it follows.
struct Tree {
    std::vector<Triangle> triangles;
    MATRIX placement{};
    AABBHierarchy hierarchy;

    Tree(const Mesh& mesh, std::uint16_t leaf_number)
        : triangles(mesh.begin(), mesh.end()),
          hierarchy(test::PointersTo(triangles), leaf_number, &placement) {
        EXPECT_TRUE(hierarchy.IsConsistent());
    }
    void Move(const MATRIX& to) {
        placement = to;
        hierarchy.MarkStale();
    }
    std::vector<const AABBHierarchyNode*> Walk() const {
        std::vector<const AABBHierarchyNode*> walked;
        NodePointerCollectorVisitor collector(walked);
        collector.Visit(nullptr);
        hierarchy.Root().Accept(collector);
        return walked;
    }
};

/// One tree is the other to the last bit, and counts what the rules for statistics say: along first children.
NodeStatistics ExpectSameTree(const AABBHierarchyNode* node, const PlainNode& plain) {
    if (testing::Test::HasFailure()) return {};  // one difference tells enough
    EXPECT_TRUE(SameBits(node->LocalBox(), plain.box));
    EXPECT_EQ(node->IsLeaf(), plain.IsLeaf());
    NodeStatistics expected{0, plain.triangles.size(), plain.triangles.size()};
    if (plain.IsLeaf()) {
        EXPECT_TRUE(std::ranges::equal(node->LocalTriangles(), plain.triangles, SameBits<Triangle>));
    } else if (!node->IsLeaf()) {
        const NodeStatistics first = ExpectSameTree(node->FirstChild(), *plain.first);
        const NodeStatistics second = ExpectSameTree(node->SecondChild(), *plain.second);
        expected = {first.depth + 1, first.total_triangles + second.total_triangles, 0};
    }
    EXPECT_TRUE(SameBits(node->Statistics(), expected));
    return expected;
}

void ExpectBuiltByTheRules(const Mesh& mesh, std::uint16_t leaf_number) {
    const Tree tree(mesh, leaf_number);
    ExpectSameTree(&tree.hierarchy.Root(), *test::BuildPlainTree(tree.triangles, leaf_number));
    std::vector<const AABBHierarchyNode*> in_order;
    for (const AABBHierarchyNode& node : tree.hierarchy.Nodes().subspan(1)) in_order.push_back(&node);
    EXPECT_EQ(tree.Walk(), in_order);
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
        // Infinite coordinates, centroids that are NaN, sums that overflow.
        Mesh mesh = test::TriangleSoup(random, 200, 10.0, 3.0);
        for (std::size_t i = 0; i < mesh.size(); i += 7)
            mesh[i].v0x = std::numeric_limits<double>::infinity();
        ExpectBuiltByTheRules(mesh, leaf_number);
        for (std::size_t i = 0; i < mesh.size(); i += 5)
            mesh[i].v1x = -std::numeric_limits<double>::infinity();
        for (TriangleData& triangle : mesh) triangle.v2y *= 1e308;
        ExpectBuiltByTheRules(mesh, leaf_number);
    }
    // Large enough for tasks at several depths.
    const Mesh large = test::BumpyBallMesh(5.0, 120);
    for (const std::size_t threads : {1U, 2U, 8U})
        RunWithThreadLimit(threads, [&] { ExpectBuiltByTheRules(large, 5); });
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

// A hundred thousand coinciding triangles make a tree of depth n / leaf number.
TEST(AABBHierarchy, SurvivesTreesAsDeepAsTheyGet) {
    Tree tree(Mesh(100'000, TriangleData{0, 0, 0, 1, 0, 0, 0, 1, 0}), 1);
    EXPECT_EQ(tree.hierarchy.Nodes().size(), 199'999U);
    EXPECT_EQ(tree.hierarchy.Root().Statistics().total_triangles, 100'000U);
    tree.Move(test::Translation(1, 2, 3));
    EXPECT_EQ(tree.Walk().back()->WorldBox().max.x, 2);
}

// Boxes hold their triangles and nest to the last bit, without a margin, whatever the placement: a descent
// drops a pair of boxes for good.
TEST(AABBHierarchy, WorldBoxesHoldTheirTrianglesAndNest) {
    std::mt19937_64 random(3);
    Mesh mesh = test::TriangleSoup(random, 500, 10.0, 3.0);
    for (std::size_t i = 0; i < mesh.size(); i += 3) mesh[i].v1y = mesh[i].v2y = mesh[i].v0y;
    Tree tree(mesh, 5);
    const auto inside = [](const Vector3& p, const Box& box) {
        return p.x >= box.min.x && p.y >= box.min.y && p.z >= box.min.z && p.x <= box.max.x &&
               p.y <= box.max.y && p.z <= box.max.z;
    };
    for (int move = 0; move < 200; ++move) {
        SCOPED_TRACE(move);
        tree.Move(test::RandomPlacement(random, 100.0));
        for (const AABBHierarchyNode& node : tree.hierarchy.Nodes()) {
            const Box& box = node.WorldBox();
            EXPECT_TRUE(SameBits(box.extent_sum, node.LocalBox().extent_sum));
            for (const Triangle& t : node.WorldTriangles())
                ASSERT_TRUE(inside(Vertex0(t), box) && inside(Vertex1(t), box) && inside(Vertex2(t), box));
            if (node.IsLeaf()) continue;
            for (const AABBHierarchyNode* child : {node.FirstChild(), node.SecondChild()})
                ASSERT_TRUE(inside(child->WorldBox().min, box) && inside(child->WorldBox().max, box));
        }
    }
}

TEST(AABBHierarchy, RefreshesWhatAMoveMadeStaleAndNothingElse) {
    Tree tree({{0, 0, 0, 2, 0, 0, 0, 1, 1}}, 5);
    const AABBHierarchyNode& root = tree.hierarchy.Root();
    tree.Move({0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0});
    EXPECT_TRUE(SameBits(root.WorldBox(), Box{{-1, 0, 0}, {0, 2, 1}, 4}));
    EXPECT_TRUE(SameBits(root.WorldTriangles()[0], Triangle({0, 0, 0, 0, 2, 0, -1, 0, 1})));
    tree.placement = test::Translation(10, 20, 30);
    EXPECT_EQ(root.WorldBox().min.x, -1) << "a placement takes effect when the tree is marked";
    EXPECT_EQ(root.WorldTriangles()[0].v2z, 1);
    tree.hierarchy.MarkStale();
    EXPECT_EQ(root.WorldBox().min.x, 10);
    EXPECT_EQ(root.WorldTriangles()[0].v2z, 31);
}

TEST(AABBHierarchy, IsEmptyWithoutTrianglesUnderAnyPlacement) {
    Tree tree({}, 5);
    const AABBHierarchyNode& root = tree.hierarchy.Root();
    for (const double x : {0.0, 1e300, std::nan("")}) {
        tree.Move(test::Translation(x, 0, 0));
        EXPECT_TRUE(root.IsEmpty() && root.WorldTriangles().empty());
        EXPECT_FALSE(Overlap(root.WorldBox(), Box{{-1e300, -1e300, -1e300}, {1e300, 1e300, 1e300}, 0}));
        EXPECT_EQ(root.Statistics().total_triangles, 0U);
    }
}

}  // namespace
}  // namespace tarn::details
