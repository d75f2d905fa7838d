#include "support/meshes.h"

#include <array>
#include <cmath>
#include <functional>
#include <numbers>

namespace tarn::test {

namespace {

using Point = std::array<double, 3>;

TriangleData TriangleOf(const Point& a, const Point& b, const Point& c) {
    return {a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2]};
}

/// A closed surface around the origin from its radius over two angles.
Mesh StarMesh(int rings, const std::function<double(double polar, double azimuth)>& radius) {
    const int sectors = 2 * rings;
    const auto point = [&](int ring, int sector) -> Point {
        const double polar = std::numbers::pi * ring / rings;
        const double azimuth = 2.0 * std::numbers::pi * (sector % sectors) / sectors;
        const double r = radius(polar, azimuth);
        return {r * std::sin(polar) * std::cos(azimuth), r * std::sin(polar) * std::sin(azimuth),
                r * std::cos(polar)};
    };
    Mesh mesh;
    for (int ring = 0; ring < rings; ++ring) {
        for (int sector = 0; sector < sectors; ++sector) {
            const Point a = point(ring, sector);
            const Point b = point(ring + 1, sector);
            const Point c = point(ring + 1, sector + 1);
            const Point d = point(ring, sector + 1);
            if (ring + 1 < rings) mesh.push_back(TriangleOf(a, b, c));
            if (ring > 0) mesh.push_back(TriangleOf(a, c, d));
        }
    }
    return mesh;
}

/// Triangles whose vertices lie around their centres, all times `scale`.
template <typename Distribution>
Mesh SoupOf(
    std::mt19937_64& random, std::size_t count, Distribution& centre, Distribution& offset, double scale) {
    Mesh mesh;
    for (std::size_t i = 0; i < count; ++i) {
        const std::array c{centre(random), centre(random), centre(random)};
        std::array<Point, 3> vertices;
        for (Point& vertex : vertices) {
            for (std::size_t axis = 0; axis < 3; ++axis) vertex[axis] = scale * (c[axis] + offset(random));
        }
        mesh.push_back(TriangleOf(vertices[0], vertices[1], vertices[2]));
    }
    return mesh;
}

}  // namespace

Mesh BoxMesh(double min_x, double min_y, double min_z, double max_x, double max_y, double max_z) {
    const auto corner = [&](unsigned bits) -> Point {
        return {(bits & 1U) != 0 ? max_x : min_x, (bits & 2U) != 0 ? max_y : min_y,
                (bits & 4U) != 0 ? max_z : min_z};
    };
    constexpr std::array<std::array<unsigned, 4>, 6> kFaces{
        {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}}};
    Mesh mesh;
    for (const auto& face : kFaces) {
        mesh.push_back(TriangleOf(corner(face[0]), corner(face[1]), corner(face[2])));
        mesh.push_back(TriangleOf(corner(face[0]), corner(face[2]), corner(face[3])));
    }
    return mesh;
}

Mesh BallMesh(double radius, int rings) {
    return StarMesh(rings, [radius](double, double) { return radius; });
}

Mesh BumpyBallMesh(double radius, int rings) {
    return StarMesh(rings, [radius](double polar, double azimuth) {
        return radius * (1.0 + 0.1 * std::sin(9.0 * polar) * std::cos(7.0 * azimuth));
    });
}

Mesh GridMesh(double size, int cells) {
    Mesh mesh;
    const auto at = [&](int i) { return size * i / cells; };
    for (int i = 0; i < cells; ++i) {
        for (int j = 0; j < cells; ++j) {
            const Point a{at(i), at(j), 0.0};
            const Point b{at(i + 1), at(j), 0.0};
            const Point c{at(i + 1), at(j + 1), 0.0};
            const Point d{at(i), at(j + 1), 0.0};
            mesh.push_back(TriangleOf(a, b, c));
            mesh.push_back(TriangleOf(a, c, d));
        }
    }
    return mesh;
}

Mesh TriangleSoup(std::mt19937_64& random, std::size_t count, double spread, double size) {
    std::uniform_real_distribution<double> centre(-spread, spread);
    std::uniform_real_distribution<double> offset(-size / 2, size / 2);
    return SoupOf(random, count, centre, offset, 1.0);
}

Mesh LatticeSoup(std::mt19937_64& random, std::size_t count, int spread, double step) {
    std::uniform_int_distribution<int> centre(-spread, spread);
    std::uniform_int_distribution<int> offset(-2, 2);
    return SoupOf(random, count, centre, offset, step);
}

}  // namespace tarn::test
