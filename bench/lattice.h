#pragma once

#include "support/meshes.h"
#include "support/placements.h"

#include "tarn/matrix.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace tarn::bench {

/// Many small bodies of two shapes, of 80 and 12 triangles, on a cubic lattice so close that neighbours
/// sometimes cross.
class Lattice {
public:
    explicit Lattice(std::size_t count)
        : count_(count),
          edge_(static_cast<std::size_t>(std::ceil(std::cbrt(static_cast<double>(count))))) {}

    std::size_t BodyCount() const { return count_; }
    std::size_t CoupleCount() const { return count_ * (count_ - 1) / 2; }

    static std::array<test::Mesh, 2> Shapes() {
        return {test::BallMesh(1.0, 5), test::BoxMesh(-0.8, -0.6, -1.0, 0.8, 0.6, 1.0)};
    }
    static std::size_t ShapeOf(std::size_t body) { return body % 2; }

    /// A new pose near its place for every body. The same calls give the same poses.
    std::vector<MATRIX> NextPoses() {
        std::vector<MATRIX> poses;
        poses.reserve(count_);
        for (std::size_t i = 0; i < count_; ++i) {
            MATRIX pose = test::RandomRigid(random_, 0.1);
            pose[3] += kPitch * static_cast<double>(i % edge_);
            pose[7] += kPitch * static_cast<double>(i / edge_ % edge_);
            pose[11] += kPitch * static_cast<double>(i / edge_ / edge_);
            poses.push_back(pose);
        }
        return poses;
    }

private:
    static constexpr double kPitch = 2.1;

    std::size_t count_;
    std::size_t edge_;
    std::mt19937_64 random_{3};
};

}  // namespace tarn::bench
