#pragma once

#include "tarn/triangle_data.h"

#include <cstddef>
#include <random>
#include <vector>

namespace tarn::test {

using Mesh = std::vector<TriangleData>;

/// The twelve triangles of a box.
Mesh BoxMesh(double min_x, double min_y, double min_z, double max_x, double max_y, double max_z);

/// A closed ball of some 4 `rings`^2 triangles around the origin.
Mesh BallMesh(double radius, int rings);

/// A closed ball whose radius swings by a tenth, so that boxes and splits vary.
Mesh BumpyBallMesh(double radius, int rings);

/// A flat square grid of 2 `cells`^2 triangles in z = 0, from the origin to `size` on both axes.
Mesh GridMesh(double size, int cells);

/// Unconnected triangles of edge length up to `size` with centres in a cube of half width `spread`.
Mesh TriangleSoup(std::mt19937_64& random, std::size_t count, double spread, double size);

/// As the soup, but on a lattice of whole numbers times `step`: coplanar faces, shared vertices and ties
/// abound.
Mesh LatticeSoup(std::mt19937_64& random, std::size_t count, int spread, double step);

}  // namespace tarn::test
