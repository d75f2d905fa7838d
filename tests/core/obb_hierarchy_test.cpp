#include "core/obb_hierarchy.h"

#include "core/aabb_hierarchy.h"
#include "core/plain_tree.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/same_bits.h"

#include "tarn/thread_limit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace tarn::details {
namespace {

using test::Mesh;

constexpr double kNarrowRounding = 0x1p-24;
constexpr MATRIX kInPlace{};

std::unique_ptr<AABBHierarchy> BuildOver(const Mesh& mesh) {
    const std::vector<Triangle> triangles(mesh.begin(), mesh.end());
    return std::make_unique<AABBHierarchy>(test::PointersTo(triangles), 5, &kInPlace);
}

Mesh Placed(Mesh mesh, const MATRIX& placement) {
    for (TriangleData& triangle : mesh) triangle = Place(placement, triangle);
    return mesh;
}

/// Triangles as soups are, but drawn out: some to lines, some to points.
Mesh Slivers(std::mt19937_64& random, std::size_t count) {
    Mesh mesh = test::TriangleSoup(random, count, 10.0, 3.0);
    for (std::size_t i = 0; i < count; ++i) {
        TriangleData& t = mesh[i];
        const double width = std::array{0.0, 1e-9, 1e-4}[i % 3];
        t.v2x = 0.5 * (t.v0x + t.v1x) + width;
        t.v2y = 0.5 * (t.v0y + t.v1y);
        t.v2z = 0.5 * (t.v0z + t.v1z);
        if (i % 7 == 0) t.v1x = t.v2x = t.v0x, t.v1y = t.v2y = t.v0y, t.v1z = t.v2z = t.v0z;
    }
    return mesh;
}

std::vector<std::pair<const char*, Mesh>> AllKinds() {
    std::mt19937_64 random(1);
    const Mesh box = test::BoxMesh(0, 0, 0, 1, 2, 3);
    const Mesh soup = test::TriangleSoup(random, 5000, 10.0, 3.0);
    std::vector<std::pair<const char*, Mesh>> kinds{
        {"one", Mesh(1, box[0])},
        {"box", box},
        {"soup", soup},
        {"soup, tiny", Placed(soup, {{1e-9, 0, 0, 0, 0, 1e-9, 0, 0, 0, 0, 1e-9, 0}})},
        {"soup, huge", Placed(soup, {{1e13, 0, 0, 0, 0, 1e13, 0, 0, 0, 0, 1e13, 0}})},
        {"soup, far away", Placed(soup, test::Translation(1e6, -1e6, 1e6))},
        {"lattice", test::LatticeSoup(random, 1000, 3, 0.1)},
        {"plate", test::GridMesh(7.0, 20)},
        {"turned plate", Placed(test::GridMesh(7.0, 20), test::RandomRigid(random, 10.0))},
        {"slivers", Slivers(random, 1000)},
        {"coincident", Mesh(1000, box[5])}};
    // Here the sum of the normals is the direction of the longest edge, up to rounding.
    for (double z = 1.0; z < 10.0; z += 1.0) {
        const TriangleData facet{-8, 8, 0, 8, -8, 0, 4 * z, 4 * z, -8};
        const TriangleData needle{0, 0, 0, 20, 20, 20 * z, 10, 10, 10 * z};
        kinds.emplace_back("needles through a facet", Mesh{facet, needle, needle});
    }
    return kinds;
}

/// Goes through the filter tree of a hierarchy and holds it against the hierarchy's triangles.
class Walk {
public:
    explicit Walk(const AABBHierarchy& hierarchy)
        : hierarchy_(hierarchy),
          tree_(*hierarchy.Filter()),
          size_(Extents(hierarchy.Root().LocalBox())),
          visits_(hierarchy.LocalTriangles().size()) {
        Below(0);
    }

    /// How often each triangle was met.
    const std::vector<int>& Visits() const { return visits_; }
    /// By how much vertices lie outside of boxes above them, and by how much they are off, in roundings of
    /// the whole size; by how many roundings dot products of axes are off.
    double MostOutside() const { return most_outside_ / Unit(); }
    double MostMoved() const { return most_moved_ / Unit(); }
    double MostSkewed() const { return most_skewed_ / kNarrowRounding; }
    /// Of all boxes, those a hundred times as wide as they are thick.
    double ShareOfFlat() const { return flat_ / boxes_; }
    /// All nodes and leaves, in pre-order.
    const std::vector<OBBNode>& Nodes() const { return nodes_; }
    const std::vector<OBBLeaf>& Leaves() const { return leaves_; }

private:
    /// A value that is no number is the largest.
    static void Raise(double& most, double value) {
        if (!(value <= most)) most = std::isnan(value) ? std::numeric_limits<double>::infinity() : value;
    }
    double Unit() const { return kNarrowRounding * (size_.x + size_.y + size_.z); }

    std::vector<std::uint32_t> Below(std::uint32_t index) {
        const OBBNode& node = tree_[index];
        nodes_.push_back(node);
        std::vector<std::uint32_t> all;
        for (std::size_t lane = 0; lane < OBBNode::kLanes; ++lane) {
            if (node.half[0][lane] < 0.0F) {
                for (int j = 0; j < 3; ++j) {
                    EXPECT_LT(node.half[j][lane], -1e20F) << "out of use, yet near";
                    for (int k = 0; k < 3; ++k) EXPECT_EQ(node.axis[j][k][lane], 0.0F);
                }
                continue;
            }
            const std::uint32_t child = node.child[lane];
            const auto below = (child & OBBHierarchy::kLeafBit) != 0 ? InLeaf(child) : Below(child);
            for (const std::uint32_t triangle : below) Compare(node, lane, triangle);
            CompareAxes(node, lane);
            const auto [thickness, width] =
                std::minmax({node.half[0][lane], node.half[1][lane], node.half[2][lane]});
            boxes_ += 1.0;
            if (thickness * 100.0F <= width) flat_ += 1.0;
            all.insert(all.end(), below.begin(), below.end());
        }
        return all;
    }

    std::vector<std::uint32_t> InLeaf(std::uint32_t child) {
        const OBBLeaf& leaf = tree_.LeafOf(child);
        leaves_.push_back(leaf);
        const std::uint32_t count = OBBHierarchy::TriangleCountOf(child);
        for (std::uint32_t lane = 0; lane < OBBLeaf::kLanes; ++lane) {
            const std::uint32_t index = leaf.triangle[lane];
            const Triangle& triangle = hierarchy_.LocalTriangles()[index];
            if (lane < count)
                ++visits_[index];
            else
                EXPECT_EQ(index, leaf.triangle[count - 1]);
            const auto of_leaf = hierarchy_.Nodes()[leaf.binary_leaf[lane]].LocalTriangles();
            EXPECT_TRUE(of_leaf.data() <= &triangle && &triangle < of_leaf.data() + of_leaf.size());
            const auto vertices = RelativeVertices(index);
            for (std::size_t v = 0; v < 3; ++v) {
                for (int k = 0; k < 3; ++k) {
                    const double off =
                        std::abs(static_cast<double>(leaf.vertex[v][k][lane]) - vertices[v][k]);
                    Raise(most_moved_, off);
                }
            }
        }
        return {leaf.triangle, leaf.triangle + count};
    }

    std::array<Vector3, 3> RelativeVertices(std::uint32_t index) const {
        const Triangle& t = hierarchy_.LocalTriangles()[index];
        return {Vertex0(t) - tree_.Origin(), Vertex1(t) - tree_.Origin(), Vertex2(t) - tree_.Origin()};
    }

    static Vector3 Lane(const float (&rows)[3][OBBNode::kLanes], std::size_t lane) {
        return {static_cast<double>(rows[0][lane]), static_cast<double>(rows[1][lane]),
                static_cast<double>(rows[2][lane])};
    }

    void Compare(const OBBNode& node, std::size_t lane, std::uint32_t triangle) {
        for (const Vector3& vertex : RelativeVertices(triangle)) {
            const Vector3 from_centre = vertex - Lane(node.centre, lane);
            for (int j = 0; j < 3; ++j) {
                const double along = std::abs(Dot(Lane(node.axis[j], lane), from_centre));
                Raise(most_outside_, along - static_cast<double>(node.half[j][lane]));
            }
        }
    }

    void CompareAxes(const OBBNode& node, std::size_t lane) {
        for (int i = 0; i < 3; ++i) {
            for (int j = i; j < 3; ++j) {
                const double dot = Dot(Lane(node.axis[i], lane), Lane(node.axis[j], lane));
                Raise(most_skewed_, std::abs(dot - (i == j ? 1.0 : 0.0)));
            }
        }
    }

    const AABBHierarchy& hierarchy_;
    const OBBHierarchy& tree_;
    Vector3 size_;
    std::vector<int> visits_;
    std::vector<OBBNode> nodes_;
    std::vector<OBBLeaf> leaves_;
    double most_outside_ = 0.0;
    double most_moved_ = 0.0;
    double most_skewed_ = 0.0;
    double boxes_ = 0.0;
    double flat_ = 0.0;
};

// The shares are those that margins of searches leave for single precision.
TEST(OBBHierarchy, HoldsEveryTriangleOnceInBoxesThatContainIt) {
    for (const auto& [kind, mesh] : AllKinds()) {
        SCOPED_TRACE(kind);
        const auto hierarchy = BuildOver(mesh);
        ASSERT_TRUE(hierarchy->Filter());
        const Walk walk(*hierarchy);
        EXPECT_EQ(walk.Visits(), std::vector<int>(mesh.size(), 1));
        EXPECT_LE(walk.MostOutside(), 12.0);
        EXPECT_LE(walk.MostMoved(), 8.0);
        EXPECT_LE(walk.MostSkewed(), 4.0);
        double longest_squared = 0.0;
        for (const TriangleData& t : mesh) {
            for (const Vector3& edge :
                 {Vertex1(t) - Vertex0(t), Vertex2(t) - Vertex1(t), Vertex0(t) - Vertex2(t)})
                longest_squared = std::max(longest_squared, LengthSquared(edge));
        }
        EXPECT_NEAR(hierarchy->Filter()->LongestEdge(), std::sqrt(longest_squared),
                    1e-6 * std::sqrt(longest_squared));
    }
}

// Boxes along the axes of coordinates would be almost as thick as they are wide. Some plates lie almost along
// them, where those are taken.
TEST(OBBHierarchy, LiesMostlyFlatOnTurnedPlates) {
    std::mt19937_64 random(2);
    double share = 0.0;
    for (int turn = 0; turn < 10; ++turn) {
        const auto hierarchy = BuildOver(Placed(test::GridMesh(7.0, 30), test::RandomRigid(random, 10.0)));
        share += Walk(*hierarchy).ShareOfFlat() / 10.0;
    }
    EXPECT_GE(share, 0.7);
}

TEST(OBBHierarchy, IsTheSameAtAnyNumberOfThreads) {
    std::mt19937_64 random(3);
    // Large enough for tasks at several depths.
    for (const Mesh& mesh : {test::BumpyBallMesh(5.0, 90), test::TriangleSoup(random, 30'000, 10.0, 0.5)}) {
        std::unique_ptr<Walk> first;
        for (const std::size_t threads : {1U, 2U, 8U, 8U, 8U}) {
            std::unique_ptr<AABBHierarchy> hierarchy;
            RunWithThreadLimit(threads, [&] { hierarchy = BuildOver(mesh); });
            auto walk = std::make_unique<Walk>(*hierarchy);
            if (!first)
                first = std::move(walk);
            else {
                EXPECT_TRUE(std::ranges::equal(walk->Nodes(), first->Nodes(), test::SameBits<OBBNode>));
                EXPECT_TRUE(std::ranges::equal(walk->Leaves(), first->Leaves(), test::SameBits<OBBLeaf>));
            }
        }
    }
}

TEST(OBBHierarchy, IsNotBuiltWhereACoordinateIsOutOfRange) {
    std::mt19937_64 random(4);
    const Mesh mesh = test::TriangleSoup(random, 20, 10.0, 3.0);
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double value : {std::nan(""), kInfinity, -kInfinity, 1e16, -1e16}) {
        for (const std::size_t triangle : {0U, 10U, 19U}) {
            for (std::size_t coordinate = 0; coordinate < 9; ++coordinate) {
                auto numbers = std::bit_cast<std::array<double, 9>>(mesh[triangle]);
                numbers[coordinate] = value;
                Mesh spoilt = mesh;
                spoilt[triangle] = std::bit_cast<TriangleData>(numbers);
                EXPECT_FALSE(BuildOver(spoilt)->Filter())
                    << value << " in " << triangle << ", " << coordinate;
            }
        }
    }
    EXPECT_TRUE(BuildOver(mesh)->Filter());
}

}  // namespace
}  // namespace tarn::details
