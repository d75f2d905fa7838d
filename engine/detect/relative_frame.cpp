#include "detect/relative_frame.h"

#include "core/triangle.h"
#include "detect/triangle_separation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tarn::details {

namespace {

/// Beyond these, distances and their squares leave single precision.
constexpr double kSmallestReach = 1e-12;
constexpr double kLargestReach = 1e15;
constexpr double kLargestSkew = 1e-4;
/// Of an edge, by placements that are not quite rigid, and by what single precision made of its ends.
constexpr double kEdgeGrowth = 1.001;
constexpr double kEdgeRounding = 4.0 * 0x1p-24;

Vector3 Column(const MATRIX& placement, std::size_t column) {
    return {placement[column], placement[4 + column], placement[8 + column]};
}

/// Bounds the entries of |M^T M - 1|: their sum, so that NaN stays NaN.
double SkewOf(const MATRIX& placement) {
    double skew = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = i; j < 3; ++j)
            skew += std::abs(Dot(Column(placement, i), Column(placement, j)) - (i == j ? 1.0 : 0.0));
    }
    return skew;
}

Vector3 Magnitude(const Vector3& v) {
    return {std::abs(v.x), std::abs(v.y), std::abs(v.z)};
}

double Sum(const Vector3& v) {
    return v.x + v.y + v.z;
}

/// Bounds the terms of world coordinates of anything in the box, for a placement that is nearly rigid.
double WorldReach(const MATRIX& placement, const Box& local) {
    const Vector3 far = Max(Magnitude(local.min), Magnitude(local.max));
    return Sum(far) + std::max({std::abs(placement[3]), std::abs(placement[7]), std::abs(placement[11])});
}

}  // namespace

RelativeFrame::RelativeFrame(const AABBHierarchy& first, const AABBHierarchy& second) {
    if (!first.Filter() || !second.Filter()) return;
    const MATRIX& to_first = first.Placement();
    const MATRIX& to_second = second.Placement();
    first_origin_ = first.Filter()->Origin();
    second_origin_ = second.Filter()->Origin();
    const Vector3 between = Place(to_second, second_origin_) - Place(to_first, first_origin_);
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) rotation_[i][j] = Dot(Column(to_first, i), Column(to_second, j));
    }
    offset_ = {Dot(Column(to_first, 0), between), Dot(Column(to_first, 1), between),
               Dot(Column(to_first, 2), between)};

    const Box first_box = first.Root().LocalBox();
    const Box second_box = second.Root().LocalBox();
    const double reach = Sum(Extents(first_box)) + Sum(Extents(second_box)) + Sum(Magnitude(offset_));
    const double world_reach = WorldReach(to_first, first_box) + WorldReach(to_second, second_box);
    const double longest_edge = std::max(first.Filter()->LongestEdge(), second.Filter()->LongestEdge());
    const double first_skew = SkewOf(to_first);
    const double second_skew = SkewOf(to_second);
    // Written such that NaN fails.
    is_rigid_ = first_skew <= kLargestSkew && second_skew <= kLargestSkew && reach >= kSmallestReach &&
                world_reach <= kLargestReach;
    rounding_margin_ = 128.0 * 0x1p-53 * world_reach + 32.0 * std::max(first_skew, second_skew) * reach;
    narrow_margin_ = 256.0 * 0x1p-24 * reach;
    crossing_margin_ = GuaranteedSeparation(kEdgeGrowth * longest_edge + kEdgeRounding * reach);
}

bool RelativeFrame::AreApart(const Box& first_box, const Box& second_box, double margin) const {
    if (!is_rigid_) return false;
    const auto& r = rotation_;
    const Vector3 a = 0.5 * (first_box.max - first_box.min);
    const Vector3 b = 0.5 * (second_box.max - second_box.min);
    const Vector3 first_centre = 0.5 * (first_box.min + first_box.max) - first_origin_;
    const Vector3 second_centre = 0.5 * (second_box.min + second_box.max) - second_origin_;
    const auto across = [](double x, double y, double z, const Vector3& v) {
        return x * v.x + y * v.y + z * v.z;
    };
    const Vector3 turned{across(r[0][0], r[0][1], r[0][2], second_centre),
                         across(r[1][0], r[1][1], r[1][2], second_centre),
                         across(r[2][0], r[2][1], r[2][2], second_centre)};
    const Vector3 t = (offset_ + turned) - first_centre;

    double s[3][3];
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) s[i][j] = std::abs(r[i][j]);
    }
    for (int i = 0; i < 3; ++i) {
        if (std::abs(t[i]) - (a[i] + across(s[i][0], s[i][1], s[i][2], b)) > margin) return true;
    }
    for (int j = 0; j < 3; ++j) {
        if (std::abs(across(r[0][j], r[1][j], r[2][j], t)) - (b[j] + across(s[0][j], s[1][j], s[2][j], a)) >
            margin)
            return true;
    }
    for (int i = 0; i < 3; ++i) {
        const int i1 = (i + 1) % 3;
        const int i2 = (i + 2) % 3;
        for (int j = 0; j < 3; ++j) {
            const int j1 = (j + 1) % 3;
            const int j2 = (j + 2) % 3;
            const double distance = std::abs(t[i2] * r[i1][j] - t[i1] * r[i2][j]);
            const double radii = a[i1] * s[i2][j] + a[i2] * s[i1][j] + b[j1] * s[i][j2] + b[j2] * s[i][j1];
            if (distance - radii > margin) return true;
        }
    }
    return false;
}

}  // namespace tarn::details
