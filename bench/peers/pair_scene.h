#pragma once

#include "peers/peer_mesh.h"

#include "tarn/matrix.h"
#include "tarn/triangle_data.h"

#include <cstddef>
#include <vector>

namespace tarn::bench {

using Triangles = std::vector<TriangleData>;

/// Two meshes, each centred on the origin; the second one moves.
struct MeshPair {
    Triangles first;
    Triangles second;
};

/// Of the mesh's box.
double Diagonal(const Triangles& triangles);

/// Moves a mesh so that the centre of its box is the origin.
void Centre(Triangles& triangles);

/// Splits every triangle into four of half the size.
Triangles SplitInFour(const Triangles& triangles);

/// A tube of some 2 `sections` x `sides` triangles around a (2, 3) torus knot of about radius 60.
Triangles TorusKnot(int sections, int sides);

/// Random poses for the second mesh. Each is pushed along a random direction to where FCL sees the contact
/// begin, then half of them a little in, a third a little out, and the others farther out. The same seed
/// gives the same poses.
std::vector<MATRIX> PosesAroundContact(const Triangles& first,
                                       const Triangles& second,
                                       std::size_t count,
                                       unsigned seed);

/// Random poses for the second mesh, in which FCL sees it about as far from the first as `gaps` says, never
/// farther. The same seed gives the same poses.
std::vector<MATRIX> PosesAtGaps(const Triangles& first,
                                const Triangles& second,
                                const std::vector<double>& gaps,
                                unsigned seed);

}  // namespace tarn::bench
