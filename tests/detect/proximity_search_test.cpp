#include "detect/proximity_search.h"

#include "detect/nearest_search.h"
#include "detect/plain_proximity.h"
#include "detect/true_distance.h"
#include "support/meshes.h"
#include "support/placements.h"
#include "support/rounds.h"
#include "support/same_bits.h"
#include "support/scene.h"

#include "tarn/thread_limit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <random>
#include <string>

namespace tarn::details {
namespace {

using test::Mesh;
using test::Scene;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

ProximityFinding Search(CollisionBody& first, CollisionBody& second, double clearance) {
    first.Update();
    second.Update();
    return SearchProximityFast(*first.Hierarchy(), *second.Hierarchy(), clearance);
}

void ExpectSameMeasured(const ProximityFinding& finding, const test::PlainFinding& plain) {
    EXPECT_EQ(finding.outcome.state, plain.outcome.state);
    EXPECT_TRUE(test::SameBits(finding.outcome.distance, plain.outcome.distance))
        << finding.outcome.distance << ", not " << plain.outcome.distance;
    EXPECT_TRUE(test::SameBits(finding.outcome.segment, plain.outcome.segment));
    EXPECT_EQ(static_cast<bool>(finding.triangles), plain.outcome.distance != -1.0);
    if (!finding.triangles) return;
    EXPECT_TRUE(test::SameBits<TriangleData>(*finding.triangles.first, plain.triangles.first));
    EXPECT_TRUE(test::SameBits<TriangleData>(*finding.triangles.second, plain.triangles.second));
}

/// The same finding as the plain re-telling's, bit for bit, with and without filters. Returns the latter.
test::PlainFinding FindsAsPlain(CollisionBody& first, CollisionBody& second, double clearance) {
    SCOPED_TRACE(testing::Message() << "clearance " << clearance);
    first.Update();
    second.Update();
    const AABBHierarchy& first_tree = *first.Hierarchy();
    const AABBHierarchy& second_tree = *second.Hierarchy();
    test::PlainFinding plain = test::PlainProximity(first, second, clearance);
    const ProximityOutcome& expected = plain.outcome;
    for (const auto search : {SearchProximity, SearchProximityFast}) {
        SCOPED_TRACE(search == SearchProximity ? "plain" : "filtered");
        const ProximityFinding finding = search(first_tree, second_tree, clearance);
        const ProximityOutcome& found = finding.outcome;
        ExpectSameMeasured(finding, plain);
        EXPECT_TRUE(test::SameBits(found.bound, expected.bound)) << found.bound << ", not " << expected.bound;
        EXPECT_EQ(found.retained_count, expected.retained_count);
        EXPECT_EQ(found.touches, expected.touches);
        EXPECT_EQ(found.is_judged, expected.is_judged);
    }
    const auto within = FindWithinClearance(first_tree, second_tree, clearance);
    EXPECT_EQ(within.has_value(), IsReported(expected));
    if (within && IsReported(expected)) ExpectSameMeasured(*within, plain);
    return plain;
}

/// Slivers, needles, and triangles with collinear or coinciding vertices, which have no area.
Mesh DegenerateSoup(std::mt19937_64& random, std::size_t count) {
    Mesh mesh = test::TriangleSoup(random, count, 4.0, 3.0);
    for (TriangleData& t : mesh) {
        const double along = static_cast<double>(random() % 5) / 2.0;
        const double off = random() % 2 == 0 ? 0.0 : 1e-6;
        t.v2x = t.v0x + along * (t.v1x - t.v0x) + off;
        t.v2y = t.v0y + along * (t.v1y - t.v0y) - off;
        t.v2z = t.v0z + along * (t.v1z - t.v0z);
    }
    return mesh;
}

Mesh RandomMesh(std::mt19937_64& random) {
    const std::size_t count = 1 + random() % 60;
    switch (random() % 10) {
        case 0:
            return test::TriangleSoup(random, count, 5.0, 0.7);
        case 1:
            return test::TriangleSoup(random, 1 + count / 8, 1.0, 5.0);
        case 2:
            return test::LatticeSoup(random, count, 3, 0.5);
        case 3:
            return test::LatticeSoup(random, 1 + count / 4, 2, 2.0);
        case 4:
            return test::BumpyBallMesh(3.0, 4);
        case 5:
            return test::BallMesh(1.0 + static_cast<double>(random() % 3), 4);
        case 6:
            return test::BoxMesh(-2, -1, -1, 2, 1, 3);
        case 7:
            return test::GridMesh(4.0, 1 + static_cast<int>(random() % 6));
        case 8:
            return DegenerateSoup(random, count);
        default:
            return count % 8 == 0 ? Mesh{} : test::TriangleSoup(random, 1, 2.0, 4.0);
    }
}

/// Flush, at small and large gaps, concentric, anywhere, and where numbers get coarse, large or lost.
MATRIX RandomPose(std::mt19937_64& random) {
    constexpr std::array kGaps{0.0, 1e-3, 0.01, 0.0316, 0.04, 0.5, 2.01, 4.01, 4.25, 7.0};
    const auto gap = [&] { return kGaps[random() % kGaps.size()]; };
    const double scale = random() % 2 == 0 ? 0.3 : 2.0;
    switch (random() % 12) {
        case 0:
        case 1:
        case 2:
            return test::Translation(0, 0, gap());
        case 3:
            return test::Translation(gap(), -gap(), gap());
        case 4:
            return {scale, 0, 0, 0, 0, scale, 0, 0, 0, 0, scale, 0};
        case 5:
            return {scale, 0, 0, 1e-9, 0, scale, 0, gap(), 0, 0, scale, 0};
        case 6:
            return test::RandomRigid(random, 1e-9);
        case 7:
        case 8:
        case 9:
            return test::RandomRigid(random, 8.0);
        default:
            return test::RandomPlacement(random, 6.0);
    }
}

/// Moves both bodies far off together, or blows both up.
MATRIX MovedOff(const MATRIX& pose, unsigned kind) {
    MATRIX moved = pose;
    if (kind == 1 || kind == 2) {
        moved[3] += kind == 1 ? 1e6 : 1e9;
        moved[7] -= kind == 1 ? 3e6 : 1e9;
    }
    if (kind == 3 || kind == 4) {
        for (double& entry : moved.m) entry *= kind == 3 ? 1e80 : 1e154;
    }
    if (kind == 5) moved[7] = kNan;
    if (kind == 6) moved[11] = kInfinity;
    return moved;
}

double RandomClearance(std::mt19937_64& random) {
    constexpr std::array kClearances{0.0,   -0.0,  1e-170,     1e-3,      0.04, 0.5, 0.5,
                                     1.0,   1.0,   2.0,        2.0,       5.0,  5.0, 10.0,
                                     100.0, 1e160, -kInfinity, kInfinity, kNan, -3.0};
    return kClearances[random() % kClearances.size()];
}

TEST(ProximitySearch, FindsWhatThePlainRulesFind) {
    std::array<int, 4> states{};
    int measured_beyond = 0;
    int not_judged = 0;
    int spoilt = 0;
    int ties = 0;
    int large = 0;
    for (unsigned seed = 0; seed < test::Rounds(800) && !HasFailure(); ++seed) {
        std::mt19937_64 random(seed);
        Scene scene(static_cast<std::int16_t>(1 + random() % (seed % 4 == 0 ? 40 : 6)));
        const Mesh mesh = RandomMesh(random);
        CollisionBody& first = *scene.AddBody(mesh);
        CollisionBody& second = *scene.AddBody(seed % 3 == 0 ? mesh : RandomMesh(random));
        for (int move = 0; move < 4; ++move) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", move " << move);
            const auto far = static_cast<unsigned>(random() % 40);
            first.SetMatrix(MovedOff(move == 0 ? MATRIX{} : RandomPose(random), far));
            second.SetMatrix(MovedOff(RandomPose(random), far > 4 ? 0 : far));
            for (int i = 0; i < 3; ++i) {
                const double clearance = RandomClearance(random);
                for (const bool swaps : {false, true}) {
                    SCOPED_TRACE(swaps ? "swapped" : "in order");
                    const test::PlainFinding found =
                        FindsAsPlain(swaps ? second : first, swaps ? first : second, clearance);
                    ++states[static_cast<std::size_t>(found.outcome.state)];
                    const bool is_beyond = found.outcome.state == ProximityState::BeyondClearance;
                    measured_beyond += is_beyond && found.outcome.distance != -1.0 ? 1 : 0;
                    not_judged += found.outcome.is_judged ? 0 : 1;
                    spoilt += found.outcome.touches && found.outcome.distance != -1.0 ? 1 : 0;
                    ties += found.winner_count > 1 ? 1 : 0;
                    large += found.outcome.retained_count > 50 ? 1 : 0;
                }
            }
        }
    }
    std::cout << "states " << testing::PrintToString(states) << ", measured beyond " << measured_beyond
              << ", not judged " << not_judged << ", touching elsewhere " << spoilt << ", ties " << ties
              << ", over 50 retained " << large << '\n';
    for (const int count : states) EXPECT_GT(count, 100) << "the meshes show nothing of some state";
    EXPECT_GT(std::min({measured_beyond, not_judged, spoilt, ties, large}), 100);
}

// Retained leaf pairs by the hundred thousand: whatever is done in batches is done in several. Edges cross
// above edges, all equally high; a single one that is nearer comes early.
TEST(ProximitySearch, FindsTheSameAmongManyCandidatesAtAnyNumberOfThreads) {
    Scene scene(1);
    Mesh along_x;
    Mesh along_y;
    for (int i = 0; i < 330; ++i) {
        const double x = i % 19 / 16.0;
        const int row = i / 19;
        const double y = row / 16.0;
        along_x.push_back({x - 4, y, -4, x + 4, y, -4, x, y, 4});
        along_y.push_back({x, y - 4, 4, x, y + 4, 4, x, y, -4});
    }
    CollisionBody& upper = *scene.AddBody(along_x, test::Translation(0, 0, 14));
    CollisionBody& lower = *scene.AddBody(along_y);
    along_y.push_back({0, -4, 9, 0, 4, 9, 0, 0, -4});
    CollisionBody& nearer = *scene.AddBody(along_y);
    // Triangles one upon the other, which make a tree as deep as they are many and nothing but ties.
    CollisionBody& chain = *scene.AddBody(Mesh(2500, {0, 0, 0, 9, 0, 0, 0, 9, 3}));
    CollisionBody& other_chain = *scene.AddBody(Mesh(50, {0, 0, 4, 9, 0, 4, 0, 9, 7}));
    for (const std::size_t threads : {1U, 2U}) {
        RunWithThreadLimit(threads, [&] {
            const test::PlainFinding tied = FindsAsPlain(lower, upper, kInfinity);
            EXPECT_GT(tied.outcome.retained_count, 100000U);
            EXPECT_EQ(tied.winner_count, tied.outcome.retained_count);
            const test::PlainFinding found = FindsAsPlain(nearer, upper, 100.0);
            EXPECT_GT(found.outcome.retained_count, 100000U);
            EXPECT_EQ(found.outcome.distance, 1.0);
        });
    }
    EXPECT_EQ(FindsAsPlain(chain, other_chain, 100.0).winner_count, 125000U);
    FindsAsPlain(other_chain, chain, 3.0);
}

// Each triangle lies so far out that every split takes one off: chains of nodes with many pairs pending.
TEST(ProximitySearch, KeepsTheOrderOfManyPendingPairs) {
    Scene scene(1);
    Mesh mesh;
    for (int i = 0; i < 24; ++i) {
        const double x = -std::ldexp(1, 6 * i);
        mesh.push_back({x, 0, 0, 1.25 * x, 0, 0, x, 1, 0.5});
    }
    CollisionBody& chain = *scene.AddBody(mesh);
    CollisionBody& sheet = *scene.AddBody(Mesh{{-1e43, -9, 1, 9, -9, 1, 9, 1e43, 1}});
    CollisionBody& other = *scene.AddBody(mesh, test::Translation(0.5, 3, 2));
    for (const double clearance : {0.3, 4.0, kInfinity}) {
        for (CollisionBody* body : {&sheet, &other}) {
            FindsAsPlain(chain, *body, clearance);
            FindsAsPlain(*body, chain, clearance);
        }
    }
}

// The bound is 0 where centres coincide and for a clearance of 0, and nothing is measured; crossings count.
TEST(ProximitySearch, FindsCrossingsWhateverTheClearance) {
    Scene scene;
    CollisionBody& box = *scene.AddBody(test::BoxMesh(-2, -2, -2, 2, 2, 2));
    CollisionBody& bar = *scene.AddBody(test::BoxMesh(-3, -1, -1, 3, 1, 1));
    CollisionBody& core = *scene.AddBody(test::BoxMesh(-1, -1, -1, 1, 1, 1));
    for (const double clearance : {0.0, -0.0, kNan, 0.5, 5.0, kInfinity, -1.0}) {
        for (const bool is_concentric : {true, false}) {
            bar.SetMatrix(is_concentric ? MATRIX{} : test::Translation(0.2, 0.3, -0.1));
            const ProximityOutcome found = FindsAsPlain(box, bar, clearance).outcome;
            EXPECT_EQ(found.state, ProximityState::Intersecting);
        }
        const ProximityOutcome nested = FindsAsPlain(box, core, clearance).outcome;
        EXPECT_EQ(nested.state, ProximityState::BeyondClearance);
        EXPECT_EQ(nested.distance, -1.0);
        EXPECT_EQ(nested.is_judged, !(clearance * clearance > 0.0));
    }
}

TEST(ProximitySearch, FindsEmptyBodiesInfinitelyFarAway) {
    Scene scene;
    CollisionBody& empty = *scene.AddBody(Mesh{});
    CollisionBody& box = *scene.AddBody(test::BoxMesh(-1, -1, -1, 1, 1, 1));
    for (const double clearance : {0.0, 7.0, kInfinity, -kInfinity, kNan}) {
        for (CollisionBody* other : {&box, &empty}) {
            EXPECT_EQ(FindsAsPlain(empty, *other, clearance).outcome.retained_count, 0U);
            EXPECT_TRUE(FindsAsPlain(*other, empty, clearance).outcome.is_judged);
        }
    }
}

// A triangle without area has a distance that is no number: the others beside it do not decide for it.
TEST(ProximitySearch, DoesNotJudgeWhereADistanceIsNoNumber) {
    const TriangleData sliver{0, 0, 0, 1, 0, 0, 2, 0, 0};
    const TriangleData far{0, 0, -20, 1, 0, -20, 0, 1, -20};
    Scene scene;
    CollisionBody& alone = *scene.AddBody(Mesh{sliver});
    CollisionBody& beside = *scene.AddBody(Mesh{sliver, far});
    CollisionBody& box = *scene.AddBody(test::BoxMesh(-1, -1, 5, 1, 1, 6));
    for (const double clearance : {10.0, 1.0}) {
        EXPECT_EQ(FindsAsPlain(box, alone, clearance).outcome.is_judged, clearance < 5.0);
        EXPECT_EQ(FindsAsPlain(box, beside, clearance).outcome.is_judged, clearance < 5.0);
    }
    EXPECT_EQ(FindsAsPlain(box, alone, 10.0).outcome.state, ProximityState::Touching);
    EXPECT_EQ(FindsAsPlain(box, beside, 10.0).outcome.state, ProximityState::BeyondClearance);

    // A triangle that touches, farther out than the clearance, hides the sliver in its leaf.
    const TriangleData floor{0, 0, 0, 4, 0, 0, 0, 4, 0};
    const Mesh leaves{{0, 0, 0.02, 4, 0, 0.02, 0, 4, 0.02},
                      {1, 1, 0.005, 2, 1, 0.005, 3, 1, 0.005},
                      {3.9, 3.9, 0, 5, 3.9, 0, 3.9, 5, 0}};
    Scene pairs(2);
    CollisionBody& hidden = *pairs.AddBody(leaves);
    const ProximityOutcome found = FindsAsPlain(*pairs.AddBody(Mesh{floor}), hidden, 0.01).outcome;
    EXPECT_EQ(found.state, ProximityState::BeyondClearance);
    EXPECT_TRUE(found.touches && found.is_judged);
}

TEST(ProximitySearch, CountsAsTouchingBelowTheThresholdOnly) {
    Scene scene;
    const Mesh mesh{{0, 0, 0, 4, 0, 0, 0, 4, 0}};
    CollisionBody& lower = *scene.AddBody(mesh);
    CollisionBody& upper = *scene.AddBody(mesh);
    const auto measured_at = [&mesh](double gap) {
        const TriangleData raised{0, 0, gap, 4, 0, gap, 0, 4, gap};
        return TrianglePairDistanceBound(EdgeForm(mesh[0]), EdgeForm(raised)).distance_squared;
    };
    double below = 0.03;
    double above = 0.032;
    for (double half; (half = (below + above) / 2) > below && half < above;)
        (measured_at(half) < 0.001 ? below : above) = half;
    upper.SetMatrix(test::Translation(0, 0, below));
    EXPECT_EQ(FindsAsPlain(lower, upper, 1.0).outcome.state, ProximityState::Touching);
    upper.SetMatrix(test::Translation(0, 0, above));
    const ProximityOutcome found = FindsAsPlain(lower, upper, 1.0).outcome;
    EXPECT_EQ(found.state, ProximityState::WithinClearance);
    EXPECT_EQ(found.distance, std::sqrt(measured_at(above)));
}

// Two fins over a floor, one well above it and one that touches it. In one leaf the second spoils the first.
TEST(ProximitySearch, LeavesOutLeafPairsThatTouchSomewhere) {
    const TriangleData high{-5, -3, 1, -5, 3, 1, -5, 0, 9};
    const TriangleData low{5, -3, 0.01, 5, 3, 0.01, 5, 0, 9};
    for (const Mesh& fins : {Mesh{high, low}, Mesh{low, high}}) {
        for (const std::int16_t leaf_number : std::array<std::int16_t, 2>{1, 2}) {
            Scene scene(leaf_number);
            CollisionBody& first = *scene.AddBody(fins);
            CollisionBody& second = *scene.AddBody(Mesh{{-40, -40, 0, 40, -40, 0, 0, 60, 0}});
            for (const bool swaps : {false, true}) {
                const ProximityOutcome found =
                    FindsAsPlain(swaps ? second : first, swaps ? first : second, 3.0).outcome;
                EXPECT_EQ(found.retained_count, leaf_number == 1 ? 2U : 1U);
                EXPECT_EQ(found.state,
                          leaf_number == 1 ? ProximityState::WithinClearance : ProximityState::Touching);
                EXPECT_TRUE(found.touches);
                EXPECT_NEAR(found.distance, leaf_number == 1 ? 1.0 : -1.0, 1e-9);
            }
        }
    }
}

double PlainGapSquared(const Box& a, const Box& b) {
    double sum = 0.0;
    for (const int axis : {0, 1, 2}) {
        const double gap = std::max({a.min[axis] - b.max[axis], b.min[axis] - a.max[axis], 0.0});
        sum += gap * gap;
    }
    return sum;
}

/// The least squared distance over all triangle pairs, or `most` where it is larger. What boxes show to lie
/// farther apart is passed over.
double TrueDistanceSquaredOf(const CollisionBody& first, const CollisionBody& second, double most) {
    const auto near = [most](const CollisionBody& body, const CollisionBody& other) {
        std::vector<std::pair<Triangle, Box>> triangles;
        for (const AABBHierarchyNode& node : body.Hierarchy()->Nodes()) {
            for (const Triangle& triangle : test::PlainWorldTriangles(node, body.CurrentMatrix())) {
                const Box box = TriangleBox(triangle);
                if (PlainGapSquared(box, other.Hierarchy()->Root().WorldBox()) < most)
                    triangles.emplace_back(triangle, box);
            }
        }
        return triangles;
    };
    double least = most;
    const auto seconds = near(second, first);
    for (const auto& [a, box_a] : near(first, second)) {
        for (const auto& [b, box_b] : seconds) {
            if (PlainGapSquared(box_a, box_b) < least)
                least = std::min(least, test::TrueDistanceSquared(a, b));
        }
    }
    return least;
}

/// How far measured distances lie above the true ones, relative to these.
class Excess {
public:
    /// A distance that was measured for two bodies, if it was. It must not lie below the true one by more than
    /// what the forms of the point-triangle distance lose, which is some units in the last place of the
    /// squares of the lengths about.
    void Add(const CollisionBody& first, const CollisionBody& second, double distance) {
        if (distance == -1.0) return;
        const Box& a = first.Hierarchy()->Root().WorldBox();
        const Box& b = second.Hierarchy()->Root().WorldBox();
        const double rounding = 64 * 0x1p-53 * LengthSquared(Max(a.max, b.max) - Min(a.min, b.min));
        const double measured = distance * distance;
        const double truth = TrueDistanceSquaredOf(first, second, measured + 2 * rounding);
        EXPECT_GE(measured, truth - rounding);
        // Below the threshold of touching the true distance can be nothing, and the measured one not.
        if (truth > 0.001) excess_.push_back(std::sqrt(measured / truth) - 1.0);
    }
    std::size_t Count() const { return excess_.size(); }
    double Quantile(double of) {
        std::ranges::sort(excess_);
        return excess_.at(static_cast<std::size_t>(of * static_cast<double>(Count() - 1)));
    }
    void Print(const std::string& where) {
        std::cout << where << ": " << Count() << " distances, above the true ones by " << 100 * Quantile(0.5)
                  << " % in the middle, " << 100 * Quantile(0.9) << " % in one of ten, "
                  << 100 * Quantile(1.0) << " % at worst\n";
    }

private:
    std::vector<double> excess_;
};

TEST(ProximitySearch, MeasuresNoLessThanTheTrueDistance) {
    Excess excess;
    for (unsigned seed = 0; seed < 250; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937_64 random(seed);
        Scene scene;
        CollisionBody& first = *scene.AddBody(RandomMesh(random));
        CollisionBody& second = *scene.AddBody(RandomMesh(random));
        for (int move = 0; move < 3; ++move) {
            second.SetMatrix(test::RandomRigid(random, 8.0));
            const ProximityOutcome found = Search(first, second, kInfinity).outcome;
            excess.Add(first, second, found.distance);
        }
    }
    excess.Print("made meshes, degenerate ones among them");
    EXPECT_GT(excess.Count(), 100U);
    EXPECT_LT(excess.Quantile(0.5), 0.05) << "the bound is of some use";
}

/// A binary STL file of the data folder. Empty where it is absent.
Mesh MeshOfFile(const std::string& name) {
    std::ifstream file(TARN_DATA_DIR "/parts/" + name, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    Mesh mesh;
    for (std::size_t at = 84; at + 50 <= bytes.size(); at += 50) {
        std::array<float, 9> c{};
        std::memcpy(c.data(), bytes.data() + at + 12, sizeof(c));
        const auto x = [&c](std::size_t i) { return static_cast<double>(c[i]); };
        mesh.push_back({x(0), x(1), x(2), x(3), x(4), x(5), x(6), x(7), x(8)});
    }
    return mesh;
}

TEST(ProximitySearch, MeasuresNoLessThanTheTrueDistanceOfRealMeshes) {
    for (const char* name : {"fw_mainboard_tray.stl", "odri_pulley_t30_output.STL"}) {
        const Mesh mesh = MeshOfFile(name);
        if (mesh.empty()) GTEST_SKIP() << "no real meshes here";
        Scene scene;
        CollisionBody& first = *scene.AddBody(mesh);
        CollisionBody& second = *scene.AddBody(mesh);
        const Vector3 extents = Extents(first.Hierarchy()->Root().LocalBox());
        const double reach = std::max({extents.x, extents.y, extents.z});
        std::mt19937_64 random(1);
        Excess excess;
        for (int move = 0; move < 40 && excess.Count() < 5; ++move) {
            second.SetMatrix(test::RandomRigid(random, reach));
            const ProximityOutcome found = Search(first, second, reach).outcome;
            excess.Add(first, second, found.distance);
        }
        excess.Print(name);
        EXPECT_EQ(excess.Count(), 5U);
    }
}

}  // namespace
}  // namespace tarn::details
