#include "core/oriented_box.h"

#include "core/float4.h"
#include "core/vector3.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>

namespace tarn::details {

namespace {

/// Triangles by which directions are chosen, spread over the list.
constexpr std::size_t kSample = 32;
/// Two triangles lie as the larger one does, mostly, and up to four as that one or as the mean of them.
constexpr std::size_t kPair = 2;
constexpr std::size_t kFew = 4;
/// Principal axes need not be exact.
constexpr int kMostSweeps = 3;
constexpr double kDiagonal = 0.01;
constexpr double kSmallestLengthSquared = 1e-60;
constexpr double kSmallestSineSquared = 1e-6;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kHalfGrowth = 1.0F + 0x1p-22F;

using Axes = std::array<Vector3, 3>;

constexpr Axes kCoordinateAxes{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};

std::optional<Vector3> Unit(const Vector3& v) {
    const double length_squared = LengthSquared(v);
    if (!(length_squared > kSmallestLengthSquared)) return std::nullopt;
    return (1.0 / std::sqrt(length_squared)) * v;
}

/// Axes along a normal, and along a direction as far as it is at a right angle to it. Nothing where the
/// direction is nearly the normal: what is left of it then is mostly rounding, which may lie along the normal
/// once more.
std::optional<Axes> AxesAlong(const Vector3& normal, const Vector3& direction) {
    const auto n = Unit(normal);
    const auto d = Unit(direction);
    if (!n || !d) return std::nullopt;
    const Vector3 residue = *d - Dot(*d, *n) * *n;
    if (!(LengthSquared(residue) > kSmallestSineSquared)) return std::nullopt;
    const auto across = Unit(residue - Dot(residue, *n) * *n);
    if (!across) return std::nullopt;
    return Axes{*across, Cross(*n, *across), *n};
}

/// Triangles along axes: between which values they lie.
struct Extent {
    Float4 lo = Uniform4(kInfinity);
    Float4 hi = Uniform4(-kInfinity);
    float half_area = 0.0F;
};

Extent ExtentAlong(const Axes& axes, std::span<const NarrowTriangle> triangles, std::size_t step) {
    Float4 column[3];
    for (int k = 0; k < 3; ++k) {
        const float component[4] = {static_cast<float>(axes[0][k]), static_cast<float>(axes[1][k]),
                                    static_cast<float>(axes[2][k]), 0.0F};
        column[k] = Load4(component);
    }
    Extent extent;
    for (std::size_t i = 0; i < triangles.size(); i += step) {
        for (const auto& vertex : triangles[i].vertex) {
            const Float4 along = column[0] * Uniform4(vertex[0]) + column[1] * Uniform4(vertex[1]) +
                                 column[2] * Uniform4(vertex[2]);
            extent.lo = Min(extent.lo, along);
            extent.hi = Max(extent.hi, along);
        }
    }
    const Float4 size = extent.hi - extent.lo;
    extent.half_area = size[0] * size[1] + size[1] * size[2] + size[2] * size[0];
    return extent;
}

Vector3 Vertex(const NarrowTriangle& triangle, int i) {
    return {static_cast<double>(triangle.vertex[i][0]), static_cast<double>(triangle.vertex[i][1]),
            static_cast<double>(triangle.vertex[i][2])};
}

/// What triangles show of the directions in which they lie.
class Directions {
public:
    Directions(std::span<const NarrowTriangle> triangles, std::size_t step) {
        for (std::size_t i = 0; i < triangles.size(); i += step) Add(triangles[i]);
    }

    std::optional<Axes> AlongLargestTriangle() const { return AxesAlong(largest_normal_, side_of_largest_); }
    std::optional<Axes> AlongNormals() const { return AxesAlong(normal_sum_, longest_side_); }

private:
    void Add(const NarrowTriangle& triangle) {
        const Vector3 v[3] = {Vertex(triangle, 0), Vertex(triangle, 1), Vertex(triangle, 2)};
        Vector3 edges[3] = {v[1] - v[0], v[2] - v[1], v[0] - v[2]};
        const Vector3 normal = Cross(edges[0], edges[1]);
        // The longest edge of half a rectangle is its diagonal, the next one leads along a side.
        std::ranges::sort(edges, {}, LengthSquared);
        const Vector3& side = edges[1];
        normal_sum_ = Dot(normal, normal_sum_) < 0.0 ? normal_sum_ - normal : normal_sum_ + normal;
        if (LengthSquared(side) > LengthSquared(longest_side_)) longest_side_ = side;
        if (LengthSquared(normal) > LengthSquared(largest_normal_)) {
            largest_normal_ = normal;
            side_of_largest_ = side;
        }
    }

    Vector3 normal_sum_{};
    Vector3 longest_side_{};
    Vector3 largest_normal_{};
    Vector3 side_of_largest_{};
};

/// The first and second moments of a surface.
class Moments {
public:
    Moments(std::span<const NarrowTriangle> triangles, std::size_t step) {
        for (std::size_t i = 0; i < triangles.size(); i += step) Add(triangles[i]);
    }

    /// The eigenvectors of the covariance by Jacobi's method.
    std::optional<Axes> PrincipalAxes() const;

private:
    /// The centroid counts for nine twelfths, each vertex for one.
    void Add(const NarrowTriangle& triangle) {
        const Vector3 v[3] = {Vertex(triangle, 0), Vertex(triangle, 1), Vertex(triangle, 2)};
        const double area = std::sqrt(LengthSquared(Cross(v[1] - v[0], v[2] - v[0])));
        const Vector3 centroid = (1.0 / 3.0) * (v[0] + v[1] + v[2]);
        area_ += area;
        first_ = first_ + area * centroid;
        const auto add_products = [this](double weight, const Vector3& p) {
            for (int i = 0; i < 3; ++i) {
                for (int j = i; j < 3; ++j) second_[i][j] += weight * p[i] * p[j];
            }
        };
        add_products(area * 9.0 / 12.0, centroid);
        for (const Vector3& vertex : v) add_products(area / 12.0, vertex);
    }

    double area_ = 0.0;
    Vector3 first_{};
    double second_[3][3]{};
};

std::optional<Axes> Moments::PrincipalAxes() const {
    if (!(area_ > 0.0)) return std::nullopt;
    const Vector3 mean = (1.0 / area_) * first_;
    double m[3][3];
    for (int i = 0; i < 3; ++i) {
        for (int j = i; j < 3; ++j) m[i][j] = m[j][i] = second_[i][j] / area_ - mean[i] * mean[j];
    }
    double v[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
        bool is_diagonal = true;
        for (const auto& [p, q] : {std::pair(0, 1), std::pair(0, 2), std::pair(1, 2)}) {
            if (std::abs(m[p][q]) <= kDiagonal * std::abs(m[p][p] - m[q][q])) continue;
            is_diagonal = false;
            const double theta = (m[q][q] - m[p][p]) / (2.0 * m[p][q]);
            const double t = (theta >= 0.0 ? 1.0 : -1.0) / (std::abs(theta) + std::sqrt(theta * theta + 1.0));
            const double c = 1.0 / std::sqrt(t * t + 1.0);
            const double s = t * c;
            const auto turn = [c, s](double& a, double& b) {
                const double old = a;
                a = c * old - s * b;
                b = s * old + c * b;
            };
            for (auto& row : m) turn(row[p], row[q]);
            for (int k = 0; k < 3; ++k) turn(m[p][k], m[q][k]);
            for (auto& row : v) turn(row[p], row[q]);
        }
        if (is_diagonal) break;
    }
    return AxesAlong({v[0][2], v[1][2], v[2][2]}, {v[0][0], v[1][0], v[2][0]});
}

/// The axes along which the triangles, or a sample of them, take least room.
class BestAxes {
public:
    BestAxes(std::span<const NarrowTriangle> triangles, std::size_t step)
        : triangles_(triangles),
          step_(step),
          axes_(kCoordinateAxes),
          extent_(ExtentAlong(axes_, triangles_, step_)) {}

    void Attempt(const std::optional<Axes>& axes) {
        if (!axes) return;
        const Extent extent = ExtentAlong(*axes, triangles_, step_);
        if (!(extent.half_area < extent_.half_area)) return;
        axes_ = *axes;
        extent_ = extent;
    }

    /// Along the largest triangle and any of its edges: the longest one of half a rectangle is its diagonal.
    void AttemptLargest() {
        const NarrowTriangle* largest = nullptr;
        Vector3 normal{};
        for (const NarrowTriangle& triangle : triangles_) {
            const Vector3 v0 = Vertex(triangle, 0);
            const Vector3 other = Cross(Vertex(triangle, 1) - v0, Vertex(triangle, 2) - v0);
            if (!(LengthSquared(other) > LengthSquared(normal))) continue;
            normal = other;
            largest = &triangle;
        }
        if (!largest) return;
        for (int i = 0; i < 3; ++i)
            Attempt(AxesAlong(normal, Vertex(*largest, (i + 1) % 3) - Vertex(*largest, i)));
    }

    const Axes& Result() const { return axes_; }
    const Extent& ResultExtent() const { return extent_; }

private:
    std::span<const NarrowTriangle> triangles_;
    std::size_t step_;
    Axes axes_;
    Extent extent_;
};

OrientedBox BoxOf(const Axes& axes, const Extent& extent) {
    OrientedBox box{};
    Vector3 centre{};
    for (std::size_t j = 0; j < 3; ++j) {
        centre =
            centre + 0.5 * (static_cast<double>(extent.lo[j]) + static_cast<double>(extent.hi[j])) * axes[j];
        box.half[j] = 0.5F * (extent.hi[j] - extent.lo[j]) * kHalfGrowth;
        for (int k = 0; k < 3; ++k) box.axis[j][k] = static_cast<float>(axes[j][k]);
    }
    for (int k = 0; k < 3; ++k) box.centre[k] = static_cast<float>(centre[k]);
    return box;
}

}  // namespace

OrientedBox FitOrientedBox(std::span<const NarrowTriangle> triangles) {
    const std::size_t step = (triangles.size() + kSample - 1) / kSample;
    BestAxes best(triangles, step);
    if (triangles.size() <= kPair) {
        best.AttemptLargest();
        return BoxOf(best.Result(), best.ResultExtent());
    }
    const Directions directions(triangles, step);
    best.Attempt(directions.AlongLargestTriangle());
    best.Attempt(directions.AlongNormals());
    if (triangles.size() > kFew) best.Attempt(Moments(triangles, step).PrincipalAxes());
    if (step == 1) return BoxOf(best.Result(), best.ResultExtent());
    // What suits the sample may not suit all.
    const Extent extent = ExtentAlong(best.Result(), triangles, 1);
    const Extent along_coordinates = ExtentAlong(kCoordinateAxes, triangles, 1);
    return along_coordinates.half_area <= extent.half_area ? BoxOf(kCoordinateAxes, along_coordinates)
                                                           : BoxOf(best.Result(), extent);
}

}  // namespace tarn::details
