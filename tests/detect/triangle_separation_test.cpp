#include "detect/triangle_separation.h"

#include "core/triangle.h"
#include "support/placements.h"
#include "support/rounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace tarn::details {
namespace {

using Corners = std::array<Vector3, 3>;

TriangleData DataOf(const Corners& c) {
    return {c[0].x, c[0].y, c[0].z, c[1].x, c[1].y, c[1].z, c[2].x, c[2].y, c[2].z};
}

double Uniform(std::mt19937_64& random, double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
}

/// Evenly spread over the orders of magnitude, of either sign, and now and then 0.
double AnyMagnitude(std::mt19937_64& random, double from_digits, double to_digits) {
    if (random() % 16 == 0) return 0.0;
    return (random() % 2 == 0 ? 1.0 : -1.0) * std::pow(10.0, Uniform(random, from_digits, to_digits));
}

/// A triangle through the origin, whose vertices are small multiples and sums of `along` and `beside`: with a
/// vertex there, a point of an edge, or one of its inside.
Corners ThroughOrigin(const Vector3& along, const Vector3& beside, std::mt19937_64& random) {
    const double j = static_cast<double>(random() % 8);
    const double k = static_cast<double>(random() % 8);
    switch (random() % 3) {
        case 0:
            return {Vector3{0, 0, 0}, along, beside};
        case 1:
            return {-1.0 * along, j * along, beside};
        default:
            return {along, beside, -j * along - k * beside};
    }
}

TEST(TriangleSeparation, NeverShowsApartWhatHasAPointInCommon) {
    std::mt19937_64 random(1);
    for (unsigned i = 0; i < test::Rounds(300000); ++i) {
        // Whole numbers: all sums are exact. Often slivers, or edges that hardly differ in direction.
        const double digits = Uniform(random, 1.0, 12.0);
        const auto whole = [&random](double most_digits) {
            const auto coordinate = [&] { return std::round(AnyMagnitude(random, 0.0, most_digits)); };
            return Vector3{coordinate(), coordinate(), coordinate()};
        };
        const Vector3 point = whole(14.0);
        const double unit = std::ldexp(1.0, random() % 4 != 0 ? 0 : static_cast<int>(random() % 1900) - 1000);
        const Vector3 edge = whole(digits);
        const auto triangle = [&] {
            const Vector3 along = random() % 2 == 0 ? whole(digits) : edge + whole(2.0);
            const Vector3 beside = random() % 2 == 0 ? whole(digits) : -2.0 * along + whole(2.0);
            Corners corners = ThroughOrigin(along, beside, random);
            for (Vector3& corner : corners) corner = unit * (point + corner);
            std::shuffle(corners.begin(), corners.end(), random);
            return DataOf(corners);
        };
        const TriangleData a = triangle();
        const TriangleData b = triangle();
        ASSERT_FALSE(AreShownApart(a, b)) << "round " << i;
    }
}

/// A triangle below the plane z = 0, but for what touches it in the origin: a vertex, an edge or the whole
/// triangle. Every slope and every width can be next to nothing.
Corners TouchingFromBelow(std::mt19937_64& random, double angle) {
    const Vector3 edge{std::cos(angle), std::sin(angle), 0.0};
    const Vector3 across{-std::sin(angle), std::cos(angle), 0.0};
    const auto any = [&] {
        const auto kind = random() % 4;
        return kind == 0 ? 0.0 : kind == 1 ? Uniform(random, -1, 1) : AnyMagnitude(random, -16, 0);
    };
    Vector3 along = any() * edge;
    Vector3 beside = any() * edge + any() * across;
    Corners corners = ThroughOrigin(along, beside, random);
    const auto kind = random() % 3;
    if (kind != 0) beside.z = -std::abs(any());
    if (kind == 1) along.z = -std::abs(any());
    if (kind == 1) corners = {Vector3{0, 0, 0}, along, beside};
    if (kind == 2) corners = {-std::abs(any()) * along, along, beside};
    std::shuffle(corners.begin(), corners.end(), random);
    return corners;
}

double LongestEdge(const Corners& c) {
    return std::sqrt(
        std::max({LengthSquared(c[1] - c[0]), LengthSquared(c[2] - c[1]), LengthSquared(c[0] - c[2])}));
}

// The distance of the pairs is known by construction: one lies below a plane, the other above a second plane,
// and between the two points in which they touch these nothing is nearer.
TEST(TriangleSeparation, ShowsApartAllThatIsFarEnough) {
    std::mt19937_64 random(2);
    for (unsigned i = 0; i < test::Rounds(400000); ++i) {
        const double angle = Uniform(random, 0.0, 7.0);
        Corners below = TouchingFromBelow(random, angle);
        Corners above = TouchingFromBelow(random, angle + AnyMagnitude(random, -16.0, 0.0));
        // One tiny and one huge, now and then; far from the origin, now and then; of any size.
        Corners& small = random() % 2 == 0 ? below : above;
        const double shrinking = random() % 2 == 0 ? 1.0 : std::pow(10.0, Uniform(random, -12.0, 0.0));
        for (Vector3& corner : small) corner = shrinking * corner;
        const double found = std::max(LongestEdge(below), LongestEdge(above));
        if (found == 0.0) continue;
        const double length = random() % 2 == 0 ? 1.0 : std::pow(10.0, Uniform(random, -20.0, 40.0));
        for (Corners* corners : {&below, &above}) {
            for (Vector3& corner : *corners) corner = length / found * corner;
        }
        // The 0.001 outweigh how far placing moves the vertices.
        const double excess = 1.001 * std::pow(10.0, std::max(0.0, Uniform(random, -4.0, 6.0)));
        const double distance = excess * GuaranteedSeparation(length);
        const double reach = length * std::pow(10.0, Uniform(random, -1.0, 6.0));
        const MATRIX placement = random() % 4 == 0 ? MATRIX{} : test::RandomRigid(random, reach);
        const auto placed = [&](Corners corners) {
            for (Vector3& corner : corners) corner = Place(placement, corner);
            return DataOf(corners);
        };
        for (Vector3& corner : above) corner.z = distance - corner.z;
        ASSERT_TRUE(AreShownApart(placed(below), placed(above)))
            << "round " << i << ", at " << excess << " times the distance, length " << length << ", reach "
            << reach;
    }
}

TEST(TriangleSeparation, ShowsNothingOfWhatIsOutOfRange) {
    const Corners near{Vector3{0, 0, 0}, Vector3{1, 0, 0}, Vector3{0, 1, 0}};
    Corners far = near;
    for (Vector3& corner : far) corner.z = 9.0;
    ASSERT_TRUE(AreShownApart(DataOf(near), DataOf(far)));
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double odd : {std::nan(""), kInfinity, -kInfinity, 1e154, 1e308, -1e308}) {
        for (std::size_t vertex = 0; vertex < 3; ++vertex) {
            for (double Vector3::*axis : {&Vector3::x, &Vector3::y, &Vector3::z}) {
                Corners broken = far;
                broken[vertex].*axis = odd;
                EXPECT_FALSE(AreShownApart(DataOf(near), DataOf(broken)));
                EXPECT_FALSE(AreShownApart(DataOf(broken), DataOf(near)));
            }
        }
    }
}

}  // namespace
}  // namespace tarn::details
