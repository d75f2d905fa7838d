#include "peers/pair_scene.h"

#include "core/box.h"
#include "core/triangle.h"
#include "support/placements.h"

#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace tarn::bench {

namespace {

using details::Vector3;

details::Box BoxOf(const Triangles& triangles) {
    details::Box box = details::TriangleBox(triangles.front());
    for (const TriangleData& triangle : triangles) Grow(box, details::TriangleBox(triangle));
    return box;
}

TriangleData TriangleOf(const Vector3& a, const Vector3& b, const Vector3& c) {
    return {a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z};
}

Vector3 KnotPoint(double angle) {
    const double ring = 40.0 + 16.0 * std::cos(3.0 * angle);
    return {ring * std::cos(2.0 * angle), ring * std::sin(2.0 * angle), 16.0 * std::sin(3.0 * angle)};
}

Vector3 UnitVector(std::mt19937_64& random) {
    std::normal_distribution<double> normal;
    const Vector3 v{normal(random), normal(random), normal(random)};
    return (1.0 / std::sqrt(LengthSquared(v))) * v;
}

MATRIX Shifted(MATRIX pose, const Vector3& direction, double distance) {
    pose[3] = distance * direction.x;
    pose[7] = distance * direction.y;
    pose[11] = distance * direction.z;
    return pose;
}

/// A pose of the second mesh that is just clear of the first, and the way that led to it.
struct Approach {
    MATRIX rotation;
    Vector3 direction;
    double distance;
};

/// Comes from afar in a random direction, in steps of a fiftieth to the first contact, then by halving. Tries
/// again where there is none.
Approach FindContact(const PeerMesh& first, const PeerMesh& second, double far, std::mt19937_64& random) {
    for (;;) {
        const MATRIX rotation = test::RandomRigid(random, 0.0);
        const Vector3 direction = UnitVector(random);
        const auto collides = [&](double distance) {
            return PeerCollides(first, {}, second, Shifted(rotation, direction, distance));
        };
        double clear = far;
        double touching = far;
        while (touching > 0.0 && !collides(touching)) {
            clear = touching;
            touching -= far / 50.0;
        }
        if (touching <= 0.0) continue;
        for (int i = 0; i < 30; ++i) {
            const double middle = 0.5 * (clear + touching);
            (collides(middle) ? touching : clear) = middle;
        }
        return {rotation, direction, clear};
    }
}

}  // namespace

double Diagonal(const Triangles& triangles) {
    return std::sqrt(LengthSquared(Extents(BoxOf(triangles))));
}

void Centre(Triangles& triangles) {
    const details::Box box = BoxOf(triangles);
    const Vector3 centre = 0.5 * (box.min + box.max);
    for (TriangleData& t : triangles) {
        t = TriangleOf(details::Vertex0(t) - centre, details::Vertex1(t) - centre,
                       details::Vertex2(t) - centre);
    }
}

Triangles SplitInFour(const Triangles& triangles) {
    Triangles split;
    split.reserve(4 * triangles.size());
    for (const TriangleData& t : triangles) {
        const std::array v{details::Vertex0(t), details::Vertex1(t), details::Vertex2(t)};
        const std::array m{0.5 * (v[0] + v[1]), 0.5 * (v[1] + v[2]), 0.5 * (v[2] + v[0])};
        split.push_back(TriangleOf(v[0], m[0], m[2]));
        split.push_back(TriangleOf(m[0], v[1], m[1]));
        split.push_back(TriangleOf(m[2], m[1], v[2]));
        split.push_back(TriangleOf(m[0], m[1], m[2]));
    }
    return split;
}

Triangles TorusKnot(int sections, int sides) {
    const auto point = [&](int section, int side) {
        const double angle = 2.0 * std::numbers::pi * (section % sections) / sections;
        const double turn = 2.0 * std::numbers::pi * (side % sides) / sides;
        const Vector3 at = KnotPoint(angle);
        const Vector3 along = KnotPoint(angle + 1e-4) - at;
        Vector3 across = Cross(along, {0.0, 0.0, 1.0});
        across = (1.0 / std::sqrt(LengthSquared(across))) * across;
        Vector3 up = Cross(across, along);
        up = (1.0 / std::sqrt(LengthSquared(up))) * up;
        return at + (5.0 * std::cos(turn)) * across + (5.0 * std::sin(turn)) * up;
    };
    Triangles triangles;
    for (int section = 0; section < sections; ++section) {
        for (int side = 0; side < sides; ++side) {
            const Vector3 a = point(section, side);
            const Vector3 b = point(section + 1, side);
            const Vector3 c = point(section + 1, side + 1);
            const Vector3 d = point(section, side + 1);
            triangles.push_back(TriangleOf(a, b, c));
            triangles.push_back(TriangleOf(a, c, d));
        }
    }
    return triangles;
}

std::vector<MATRIX> PosesAroundContact(const Triangles& first,
                                       const Triangles& second,
                                       std::size_t count,
                                       unsigned seed) {
    const PeerMesh first_mesh(first);
    const PeerMesh second_mesh(second);
    const double small = Diagonal(second) / 2.0;
    const double far = Diagonal(first) / 2.0 + small;
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    std::vector<MATRIX> poses;
    while (poses.size() < count) {
        const Approach approach = FindContact(first_mesh, second_mesh, far, random);
        double push = -small * (0.0005 + 0.02 * share(random));
        if (poses.size() % 6 >= 3) push = -push;
        if (poses.size() % 6 == 5) push *= 20.0;
        poses.push_back(Shifted(approach.rotation, approach.direction, approach.distance + push));
    }
    return poses;
}

std::vector<MATRIX> PosesAtGaps(const Triangles& first,
                                const Triangles& second,
                                const std::vector<double>& gaps,
                                unsigned seed) {
    const PeerMesh first_mesh(first);
    const PeerMesh second_mesh(second);
    const double far = (Diagonal(first) + Diagonal(second)) / 2.0;
    std::mt19937_64 random(seed);
    std::vector<MATRIX> poses;
    for (const double gap : gaps) {
        Approach approach = FindContact(first_mesh, second_mesh, far, random);
        // A step by what is missing never leads too far out, for the distance grows by no more than the step.
        for (int i = 0; i < 20; ++i) {
            const MATRIX pose = Shifted(approach.rotation, approach.direction, approach.distance);
            const double missing = gap - PeerDistance(first_mesh, {}, second_mesh, pose).distance;
            if (missing < 0.01 * gap) break;
            approach.distance += missing;
        }
        poses.push_back(Shifted(approach.rotation, approach.direction, approach.distance));
    }
    return poses;
}

}  // namespace tarn::bench
