#include "peers/peer_mesh.h"

#include <fcl/broadphase/broadphase_dynamic_AABB_tree.h>
#include <fcl/geometry/bvh/BVH_model.h>
#include <fcl/math/bv/OBBRSS.h>
#include <fcl/narrowphase/collision.h>
#include <fcl/narrowphase/collision_object.h>
#include <fcl/narrowphase/distance.h>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace tarn::bench {

namespace {

fcl::Transform3d TransformOf(const MATRIX& m) {
    fcl::Transform3d transform = fcl::Transform3d::Identity();
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            transform(row, column) = m[static_cast<std::size_t>(4 * row + column)];
        }
    }
    return transform;
}

/// The nearest points, asked for like the distance. The limit is where the search starts from.
PeerNearest Nearest(const fcl::CollisionGeometryd* first,
                    const fcl::Transform3d& first_placement,
                    const fcl::CollisionGeometryd* second,
                    const fcl::Transform3d& second_placement,
                    double limit) {
    fcl::DistanceRequestd request;
    request.enable_nearest_points = true;
    fcl::DistanceResultd result(limit);
    fcl::distance(first, first_placement, second, second_placement, request, result);
    const auto& [p, q] = result.nearest_points;
    return {std::max(result.min_distance, 0.0), {p.x(), p.y(), p.z(), q.x(), q.y(), q.z()}};
}

PeerScene::Couple CoupleOf(const fcl::CollisionObjectd& a, const fcl::CollisionObjectd& b) {
    const auto first = reinterpret_cast<std::size_t>(a.getUserData());
    const auto second = reinterpret_cast<std::size_t>(b.getUserData());
    return {std::min(first, second), std::max(first, second)};
}

bool StandsBefore(const PeerScene::Couple& a, const PeerScene::Couple& b) {
    return std::tie(a.first, a.second) < std::tie(b.first, b.second);
}

}  // namespace

struct PeerMesh::Model {
    std::shared_ptr<fcl::BVHModel<fcl::OBBRSSd>> hierarchy = std::make_shared<fcl::BVHModel<fcl::OBBRSSd>>();
};

PeerMesh::PeerMesh(const std::vector<TriangleData>& triangles) : model_(std::make_shared<Model>()) {
    std::vector<fcl::Vector3d> vertices;
    std::vector<fcl::Triangle> indices;
    vertices.reserve(3 * triangles.size());
    indices.reserve(triangles.size());
    for (const TriangleData& t : triangles) {
        const std::size_t base = vertices.size();
        vertices.emplace_back(t.v0x, t.v0y, t.v0z);
        vertices.emplace_back(t.v1x, t.v1y, t.v1z);
        vertices.emplace_back(t.v2x, t.v2y, t.v2z);
        indices.emplace_back(base, base + 1, base + 2);
    }
    model_->hierarchy->beginModel(static_cast<int>(indices.size()), static_cast<int>(vertices.size()));
    model_->hierarchy->addSubModel(vertices, indices);
    model_->hierarchy->endModel();
    model_->hierarchy->computeLocalAABB();
}

PeerMesh::PeerMesh(PeerMesh&&) noexcept = default;

PeerMesh::~PeerMesh() = default;

bool PeerCollides(const PeerMesh& first,
                  const MATRIX& first_placement,
                  const PeerMesh& second,
                  const MATRIX& second_placement) {
    const fcl::CollisionRequestd request;
    fcl::CollisionResultd result;
    return fcl::collide(first.model()->hierarchy.get(), TransformOf(first_placement),
                        second.model()->hierarchy.get(), TransformOf(second_placement), request, result) > 0;
}

PeerNearest PeerDistance(const PeerMesh& first,
                         const MATRIX& first_placement,
                         const PeerMesh& second,
                         const MATRIX& second_placement,
                         double limit) {
    return Nearest(first.model()->hierarchy.get(), TransformOf(first_placement),
                   second.model()->hierarchy.get(), TransformOf(second_placement), limit);
}

struct PeerScene::Manager {
    std::vector<std::unique_ptr<fcl::CollisionObjectd>> objects;
    fcl::DynamicAABBTreeCollisionManagerd tree;
};

PeerScene::PeerScene() : manager_(std::make_unique<Manager>()) {}

PeerScene::~PeerScene() = default;

void PeerScene::Add(const PeerMesh& mesh, const MATRIX& placement) {
    manager_->objects.push_back(
        std::make_unique<fcl::CollisionObjectd>(mesh.model()->hierarchy, TransformOf(placement)));
    manager_->objects.back()->setUserData(reinterpret_cast<void*>(manager_->objects.size() - 1));
}

void PeerScene::Register() {
    std::vector<fcl::CollisionObjectd*> objects;
    objects.reserve(manager_->objects.size());
    for (const auto& object : manager_->objects) objects.push_back(object.get());
    manager_->tree.registerObjects(objects);
    manager_->tree.setup();
}

void PeerScene::Move(std::size_t body, const MATRIX& placement) {
    fcl::CollisionObjectd& object = *manager_->objects[body];
    object.setTransform(TransformOf(placement));
    object.computeAABB();
}

void PeerScene::Update() {
    manager_->tree.update();
}

std::vector<PeerScene::Couple> PeerScene::CollidingCouples() const {
    std::vector<Couple> couples;
    manager_->tree.collide(&couples, [](fcl::CollisionObjectd* a, fcl::CollisionObjectd* b, void* data) {
        const fcl::CollisionRequestd request;
        fcl::CollisionResultd result;
        if (fcl::collide(a, b, request, result) > 0) {
            static_cast<std::vector<Couple>*>(data)->push_back(CoupleOf(*a, *b));
        }
        return false;
    });
    std::ranges::sort(couples, StandsBefore);
    return couples;
}

std::vector<PeerScene::NearCouple> PeerScene::CouplesWithin(double clearance) const {
    struct Search {
        double limit;
        std::vector<NearCouple> couples;
    };
    // Just above the clearance, so that a couple that is as far apart as the clearance counts.
    Search search{std::nextafter(clearance, std::numeric_limits<double>::infinity()), {}};
    const auto measure = [](fcl::CollisionObjectd* a, fcl::CollisionObjectd* b, void* data, double& reach) {
        Search& s = *static_cast<Search*>(data);
        reach = s.limit;  // of the boxes that the tree goes on to compare
        const PeerNearest nearest = Nearest(a->collisionGeometry().get(), a->getTransform(),
                                            b->collisionGeometry().get(), b->getTransform(), s.limit);
        if (nearest.distance < s.limit) s.couples.push_back({CoupleOf(*a, *b), nearest});
        return false;
    };
    manager_->tree.distance(&search, measure);
    std::ranges::sort(search.couples, StandsBefore, &NearCouple::couple);
    return std::move(search.couples);
}

}  // namespace tarn::bench
