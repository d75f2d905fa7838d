#include "detect/triangle_separation.h"

#include "core/triangle.h"
#include "core/vector3.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace tarn::details {

namespace {

/// Shorter directions may have lost digits to underflow, and so may their margins. None is longer than about
/// the reach or its square, so the reach is not too small, either. Overflow makes infinite margins.
constexpr double kSmallestDirectionSquared = 1e-150;
/// 16 u, see the header.
constexpr double kMargin = 0x1p-49;
/// 512 u.
constexpr double kVolumeError = 0x1p-44;

using Vectors = std::array<Vector3, 3>;

Vectors VerticesOf(const TriangleData& triangle) {
    return {Vertex0(triangle), Vertex1(triangle), Vertex2(triangle)};
}

Vectors Relative(const Vectors& points, const Vector3& origin) {
    return {points[0] - origin, points[1] - origin, points[2] - origin};
}

/// Edge i leads from vertex i to the next.
Vectors EdgesOf(const Vectors& v) {
    return {v[1] - v[0], v[2] - v[1], v[0] - v[2]};
}

double SumOfSquares(const Vectors& points) {
    return LengthSquared(points[0]) + LengthSquared(points[1]) + LengthSquared(points[2]);
}

struct Range {
    double min;
    double max;
};

Range RangeOf(const Vectors& points, const Vector3& direction) {
    const double at[3] = {Dot(direction, points[0]), Dot(direction, points[1]), Dot(direction, points[2])};
    return {std::min(std::min(at[0], at[1]), at[2]), std::max(std::max(at[0], at[1]), at[2])};
}

/// From the nearest point of the edge to the point at `offset` from where the edge begins.
Vector3 FromEdge(const Vector3& offset, const Vector3& edge) {
    const double length_squared = LengthSquared(edge);
    if (!(length_squared > 0.0)) return offset;
    return offset - std::clamp(Dot(offset, edge) / length_squared, 0.0, 1.0) * edge;
}

bool AllBeyond(double limit, double a, double b, double c) {
    return (a > limit && b > limit && c > limit) || (a < -limit && b < -limit && c < -limit);
}

/// Whether the edge from p to q passes through the inside of a triangle, by more than `error` of each of the
/// volumes that say so.
bool Pierces(const Vector3& p, const Vector3& q, const Vectors& triangle, double error) {
    const auto& [x, y, z] = triangle;
    const Vector3 normal = Cross(y - x, z - x);
    const double from = Dot(normal, p - x);
    const double to = Dot(normal, q - x);
    if (!((from > error && to < -error) || (from < -error && to > error))) return false;
    const Vector3 edge = q - p;
    return AllBeyond(error, Dot(edge, Cross(x - p, y - p)), Dot(edge, Cross(y - p, z - p)),
                     Dot(edge, Cross(z - p, x - p)));
}

class SeparationTest {
public:
    SeparationTest(const TriangleData& a, const TriangleData& b)
        : a_(VerticesOf(a)),
          b_(VerticesOf(b)),
          a_edges_(EdgesOf(a_)),
          b_edges_(EdgesOf(b_)),
          a_points_(Relative(a_, a_[0])),
          b_points_(Relative(b_, a_[0])),
          reach_squared_(SumOfSquares(a_points_) + SumOfSquares(b_points_)) {}

    bool Result() const {
        // A coordinate that is no number makes a reach and margins that are none: all comparisons fail.
        if (CertainlyIntersect()) return false;
        return IsGap(Cross(a_edges_[0], a_edges_[1])) || IsGap(Cross(b_edges_[0], b_edges_[1])) ||
               IsGapFromEdges(a_, b_, b_edges_) || IsGapFromEdges(b_, a_, a_edges_) || IsGapAcrossEdges();
    }

private:
    /// Most triangles that are asked about intersect, by far more than rounding: no direction can show them
    /// apart. A volume, a product of three differences up to 2 R, is off by some 100 u R^3 at most.
    bool CertainlyIntersect() const {
        const double error = kVolumeError * reach_squared_ * std::sqrt(reach_squared_);
        for (std::size_t i = 0; i < 3; ++i) {
            const std::size_t j = (i + 1) % 3;
            if (Pierces(a_points_[i], a_points_[j], b_points_, error) ||
                Pierces(b_points_[i], b_points_[j], a_points_, error))
                return true;
        }
        return false;
    }

    bool IsGap(const Vector3& direction) const {
        const double length_squared = LengthSquared(direction);
        if (length_squared < kSmallestDirectionSquared) return false;
        const Range a = RangeOf(a_points_, direction);
        const Range b = RangeOf(b_points_, direction);
        const double gap = std::max(b.min - a.max, a.min - b.max);
        return gap > 0.0 && gap > kMargin * std::sqrt(length_squared * reach_squared_);
    }

    /// Along the vectors from a triangle's edges to the vertices of the other.
    bool IsGapFromEdges(const Vectors& vertices, const Vectors& origins, const Vectors& edges) const {
        for (const Vector3& vertex : vertices) {
            for (std::size_t i = 0; i < 3; ++i) {
                if (IsGap(FromEdge(vertex - origins[i], edges[i]))) return true;
            }
        }
        return false;
    }

    bool IsGapAcrossEdges() const {
        for (const Vector3& a_edge : a_edges_) {
            for (const Vector3& b_edge : b_edges_) {
                if (IsGap(Cross(a_edge, b_edge))) return true;
            }
        }
        return false;
    }

    Vectors a_;
    Vectors b_;
    Vectors a_edges_;
    Vectors b_edges_;
    /// Relative to the first vertex of all, so that rounding is small wherever the triangles are.
    Vectors a_points_;
    Vectors b_points_;
    double reach_squared_;
};

}  // namespace

bool AreShownApart(const TriangleData& a, const TriangleData& b) {
    return SeparationTest(a, b).Result();
}

}  // namespace tarn::details
