#pragma once

#include "tarn/matrix.h"
#include "tarn/triangle_data.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

namespace tarn::bench {

/// A mesh as FCL checks it: its hierarchy of oriented boxes over the same triangles, in local coordinates.
class PeerMesh {
public:
    explicit PeerMesh(const std::vector<TriangleData>& triangles);
    PeerMesh(PeerMesh&&) noexcept;
    ~PeerMesh();

    struct Model;
    const std::shared_ptr<Model>& model() const { return model_; }

private:
    std::shared_ptr<Model> model_;
};

/// Whether FCL finds that two placed meshes collide.
bool PeerCollides(const PeerMesh& first,
                  const MATRIX& first_placement,
                  const PeerMesh& second,
                  const MATRIX& second_placement);

/// What FCL measures between two placed meshes: 0 where they collide.
struct PeerNearest {
    double distance;
    SegmentData segment;
};

/// The distance and where it is. With a limit FCL looks no farther: a distance that is not below the limit
/// comes out as the limit.
PeerNearest PeerDistance(const PeerMesh& first,
                         const MATRIX& first_placement,
                         const PeerMesh& second,
                         const MATRIX& second_placement,
                         double limit = std::numeric_limits<double>::infinity());

/// Placed meshes under FCL's dynamic tree of boxes.
class PeerScene {
public:
    PeerScene();
    PeerScene(const PeerScene&) = delete;
    PeerScene& operator=(const PeerScene&) = delete;
    ~PeerScene();

    /// The mesh must outlive the scene.
    void Add(const PeerMesh& mesh, const MATRIX& placement);
    /// Ends the adding; afterwards bodies may move.
    void Register();
    void Move(std::size_t body, const MATRIX& placement);
    /// Makes moves known to the tree.
    void Update();

    struct Couple {
        std::size_t first;
        std::size_t second;
        bool operator==(const Couple&) const = default;
    };
    /// All couples that collide, smaller index first, sorted.
    std::vector<Couple> CollidingCouples() const;

    struct NearCouple {
        Couple couple;
        PeerNearest nearest;
    };
    /// All couples that are not farther apart than the clearance, sorted likewise.
    std::vector<NearCouple> CouplesWithin(double clearance) const;

private:
    struct Manager;
    std::unique_ptr<Manager> manager_;
};

}  // namespace tarn::bench
