#include "peers/posed_scene.h"

#include "core/box.h"
#include "core/triangle.h"
#include "lattice.h"
#include "support/placements.h"

#include <cmath>
#include <random>

namespace tarn::bench {

namespace {

constexpr int kMoves = 8;

MATRIX Product(const MATRIX& a, const MATRIX& b) {
    MATRIX product;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            double sum = column == 3 ? a[4 * row + 3] : 0.0;
            for (std::size_t k = 0; k < 3; ++k) sum += a[4 * row + k] * b[4 * k + column];
            product[4 * row + column] = sum;
        }
    }
    return product;
}

double DiagonalOf(const std::vector<Triangles>& meshes,
                  const std::vector<std::size_t>& mesh_of_body,
                  const std::vector<MATRIX>& pose) {
    Triangles placed;
    for (std::size_t i = 0; i < pose.size(); ++i) {
        for (const TriangleData& t : meshes[mesh_of_body[i]]) placed.push_back(details::Place(pose[i], t));
    }
    return Diagonal(placed);
}

}  // namespace

PosedScene::PosedScene(const std::vector<Triangles>& meshes,
                       const std::vector<std::size_t>& mesh_of_body,
                       std::vector<std::vector<MATRIX>> poses)
    : poses_(std::move(poses)),
      diagonal_(DiagonalOf(meshes, mesh_of_body, poses_[0])) {
    std::vector<ICollisionElement*> elements;
    for (const Triangles& mesh : meshes) {
        elements.push_back(own_.AddElement(mesh));
        peer_meshes_.emplace_back(mesh);
    }
    for (std::size_t i = 0; i < mesh_of_body.size(); ++i) {
        own_.AddBody(elements[mesh_of_body[i]], poses_[0][i]);
        peer_.Add(peer_meshes_[mesh_of_body[i]], poses_[0][i]);
    }
    own_.Configuration().EnableAllCouples();
    peer_.Register();
}

void PosedScene::PlaceOwn(std::size_t pose) {
    for (std::size_t i = 0; i < BodyCount(); ++i) own_.Bodies()[i]->SetMatrix(poses_[pose][i]);
}

void PosedScene::PlacePeer(std::size_t pose) {
    for (std::size_t i = 0; i < BodyCount(); ++i) peer_.Move(i, poses_[pose][i]);
    peer_.Update();
}

void PosedScene::ForgetOwn() {
    for (const auto& body : own_.Bodies()) {
        ICollisionElement* element = body->GetElements().front();
        body->RemoveElement(element);
        body->AddElement(element);
        body->SetLeafNumber(5);
    }
}

std::unique_ptr<PosedScene> MoveAsOne(const PlacedAssembly& assembly) {
    std::mt19937_64 random(4);
    std::vector<std::size_t> mesh_of_body;
    for (const auto& body : assembly.bodies) mesh_of_body.push_back(body.mesh);
    std::vector<std::vector<MATRIX>> poses;
    for (int move = 0; move < kMoves; ++move) {
        const MATRIX motion = move == 0 ? MATRIX() : test::RandomRigid(random, 100.0);
        poses.emplace_back();
        for (const auto& body : assembly.bodies) poses.back().push_back(Product(motion, body.placement));
    }
    return std::make_unique<PosedScene>(assembly.meshes, mesh_of_body, std::move(poses));
}

std::unique_ptr<PosedScene> MakeLattice(std::size_t count) {
    Lattice lattice(count);
    std::vector<std::size_t> mesh_of_body;
    for (std::size_t i = 0; i < count; ++i) mesh_of_body.push_back(Lattice::ShapeOf(i));
    const auto shapes = Lattice::Shapes();
    std::vector<std::vector<MATRIX>> poses{lattice.NextPoses(), lattice.NextPoses(), lattice.NextPoses()};
    return std::make_unique<PosedScene>(std::vector<Triangles>{shapes[0], shapes[1]}, mesh_of_body,
                                        std::move(poses));
}

}  // namespace tarn::bench
