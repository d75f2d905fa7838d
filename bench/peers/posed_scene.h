#pragma once

#include "peers/pair_scene.h"
#include "peers/peer_mesh.h"
#include "peers/placed_assembly.h"
#include "support/scene.h"

#include "tarn/matrix.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace tarn::bench {

/// Bodies under both libraries, with poses of all of them.
class PosedScene {
public:
    PosedScene(const std::vector<Triangles>& meshes,
               const std::vector<std::size_t>& mesh_of_body,
               std::vector<std::vector<MATRIX>> poses);

    std::size_t PoseCount() const { return poses_.size(); }
    std::size_t BodyCount() const { return own_.Bodies().size(); }
    /// Of the box around all bodies in the first pose.
    double Diagonal() const { return diagonal_; }

    void PlaceOwn(std::size_t pose);
    void PlacePeer(std::size_t pose);
    /// Builds all hierarchies of the library again, so that the next check is a first one.
    void ForgetOwn();

    /// The identifiers of the bodies count from 1.
    test::Scene& Own() { return own_; }
    /// Its couples count bodies from 0.
    PeerScene& Peer() { return peer_; }

private:
    std::vector<std::vector<MATRIX>> poses_;
    double diagonal_;
    test::Scene own_;
    std::vector<PeerMesh> peer_meshes_;
    PeerScene peer_;
};

/// An assembly as it was drawn, and then moved rigidly as a whole.
std::unique_ptr<PosedScene> MoveAsOne(const PlacedAssembly& assembly);

/// The lattice of small bodies in three poses, each body moved by itself.
std::unique_ptr<PosedScene> MakeLattice(std::size_t count);

}  // namespace tarn::bench
