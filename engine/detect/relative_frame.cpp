#include "detect/relative_frame.h"

#include "core/triangle.h"
#include "core/wide_hierarchy.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace tarn::details {

namespace {

/// Beyond these, distances and their squares leave single precision.
constexpr double kSmallestReach = 1e-12;
constexpr double kLargestReach = 1e15;
constexpr double kLargestSkew = 1e-4;

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

struct Range {
    double min = std::numeric_limits<double>::infinity();
    double max = -std::numeric_limits<double>::infinity();
};

/// Where a leaf's triangles lie along a direction, each point mapped before.
template <typename Map>
Range RangeOf(const AABBHierarchyNode& leaf, const Vector3& direction, Map map) {
    Range range;
    for (const Triangle& triangle : leaf.LocalTriangles()) {
        for (const Vector3& vertex : {Vertex0(triangle), Vertex1(triangle), Vertex2(triangle)}) {
            const double along = Dot(direction, map(vertex));
            range.min = std::min(range.min, along);
            range.max = std::max(range.max, along);
        }
    }
    return range;
}

}  // namespace

RelativeFrame::RelativeFrame(const AABBHierarchy& first, const AABBHierarchy& second)
    : first_(first),
      second_(second) {
    const MATRIX& to_first = first.Placement();
    const MATRIX& to_second = second.Placement();
    first_origin_ = first.Wide().Origin();
    second_origin_ = second.Wide().Origin();
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
    const double first_skew = SkewOf(to_first);
    const double second_skew = SkewOf(to_second);
    // Written such that NaN fails.
    is_rigid_ = first_skew <= kLargestSkew && second_skew <= kLargestSkew && reach >= kSmallestReach &&
                world_reach <= kLargestReach;
    skew_ = std::max(first_skew, second_skew);
    leaf_margin_ = 128.0 * 0x1p-53 * world_reach + 32.0 * skew_ * reach;
    wide_margin_ = 2.0 * leaf_margin_ + 96.0 * 0x1p-24 * reach;
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
    const Vector3 t = ToFirst(second_centre) - first_centre;

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

Vector3 RelativeFrame::ToFirst(const Vector3& point) const {
    const auto& r = rotation_;
    return {offset_.x + (r[0][0] * point.x + r[0][1] * point.y + r[0][2] * point.z),
            offset_.y + (r[1][0] * point.x + r[1][1] * point.y + r[1][2] * point.z),
            offset_.z + (r[2][0] * point.x + r[2][1] * point.y + r[2][2] * point.z)};
}

Vector3 RelativeFrame::ToSecond(const Vector3& point) const {
    const auto& r = rotation_;
    const Vector3 p = point - offset_;
    return {r[0][0] * p.x + r[1][0] * p.y + r[2][0] * p.z, r[0][1] * p.x + r[1][1] * p.y + r[2][1] * p.z,
            r[0][2] * p.x + r[1][2] * p.y + r[2][2] * p.z};
}

bool RelativeFrame::SlabsAreApart(const AABBHierarchyNode& first_leaf,
                                  const AABBHierarchyNode& second_leaf) const {
    if (!is_rigid_) return false;
    bool are_apart = false;
    const auto look_along = [&](const Range& range, const Range& other) {
        are_apart = are_apart || other.min - range.max > leaf_margin_ || range.min - other.max > leaf_margin_;
    };
    const auto first_points = [&](const Vector3& point) { return point - first_origin_; };
    const auto second_points = [&](const Vector3& point) { return point - second_origin_; };
    const auto first_index = static_cast<std::uint32_t>(&first_leaf - &first_.Root());
    const auto second_index = static_cast<std::uint32_t>(&second_leaf - &second_.Root());
    first_.Wide().VisitSlabNormalsAbove(first_index, [&](const Vector3& normal) {
        look_along(RangeOf(first_leaf, normal, first_points),
                   RangeOf(second_leaf, normal, [&](const Vector3& p) { return ToFirst(second_points(p)); }));
    });
    second_.Wide().VisitSlabNormalsAbove(second_index, [&](const Vector3& normal) {
        look_along(RangeOf(second_leaf, normal, second_points),
                   RangeOf(first_leaf, normal, [&](const Vector3& p) { return ToSecond(first_points(p)); }));
    });
    return are_apart;
}

}  // namespace tarn::details
