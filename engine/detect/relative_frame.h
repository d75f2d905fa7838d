#pragma once

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "core/vector3.h"

namespace tarn::details {

/// Two hierarchies seen from the first one's frame, for filters that ask whether things lie apart as they are
/// turned, where world boxes swell. A test of two boxes looks along fifteen directions: the three edges of
/// either box and their nine cross products (S. Gottschalk, M. C. Lin, D. Manocha, "OBBTree", 1996).
///
/// The tests err on one side only: what is shown apart is apart, by more than the margin leaves open, as the
/// triangles stand in world coordinates with all their rounding. Let U bound how far points of the two trees
/// lie from each other, W the magnitude of world coordinates and of the terms that add up to them, and
/// u = 2^-53. The margins consist of these shares:
///  (1) Rounding in double precision. Placing a vertex moves it by at most 4 u W an axis. The formulas below
///      are sums of at most a dozen products, each bounded by W: 60 u W.  Together less than 128 u W.
///  (2) Placements that are not quite rotations. With e the largest entry of |M^T M - 1| over both rotation
///      parts M, the frame's transposes for inverses cost at most some 20 e U along any of the directions.
///      The share is 32 e U. Where e is above 1e-4, or no number, nothing is shown apart.
///  (3) Single precision, in searches of filter trees: with v = 2^-24, rounding a vertex and turning it into
///      the other frame costs up to 8 v U; the axes of boxes are off by 2 v an entry, so what they are said to
///      hold by 12 v U, and turned into each other by as much again; a cross product of two of them, times an
///      offset, by 24 v U; sums of a dozen terms by 12 v U. The share is 256 v U, three times as much.
///  (4) What a test of triangles needs to see for itself that they are apart (see `GuaranteedSeparation`).
///      Only searches for crossings have to leave that much: what they leave out is no hit by the rule.
/// A cross product of two unit vectors is no longer than one, so the margins hold for it as it stands.
class RelativeFrame {
public:
    /// At the current placements, of trees that are not empty.
    RelativeFrame(const AABBHierarchy& first, const AABBHierarchy& second);

    /// Whether anything can be shown apart. False for placements that are not rigid, or out of any
    /// reasonable range, where single precision overflows.
    bool IsRigid() const { return is_rigid_; }

    /// Whether the boxes of two nodes, one of each tree, lie apart such that no triangles below them intersect
    /// by the rule.
    bool SubtreesAreApart(const AABBHierarchyNode& first_node, const AABBHierarchyNode& second_node) const {
        return AreApart(first_node.LocalBox(), second_node.LocalBox(), rounding_margin_ + crossing_margin_);
    }

    /// Whether everything below the two nodes is shown to lie farther apart than `distance`, triangles and
    /// centres of boxes.
    bool SubtreesAreFartherThan(double distance,
                                const AABBHierarchyNode& first_node,
                                const AABBHierarchyNode& second_node) const {
        return AreApart(first_node.LocalBox(), second_node.LocalBox(), distance + rounding_margin_);
    }

    /// Column j is the second frame's axis j in the first frame.
    const double (&Rotation() const)[3][3] { return rotation_; }
    /// From the first filter tree's origin to the second's, in the first frame.
    const Vector3& Offset() const { return offset_; }
    /// How far apart something has to look in single precision to be apart: shares (1) to (3).
    double NarrowMargin() const { return rounding_margin_ + narrow_margin_; }
    /// The same with share (4).
    double NarrowCrossingMargin() const { return rounding_margin_ + narrow_margin_ + crossing_margin_; }

private:
    bool AreApart(const Box& first_box, const Box& second_box, double margin) const;

    double rotation_[3][3]{};
    Vector3 offset_{};
    Vector3 first_origin_{};
    Vector3 second_origin_{};
    double rounding_margin_ = 0.0;  ///< shares (1) and (2)
    double narrow_margin_ = 0.0;    ///< share (3)
    double crossing_margin_ = 0.0;  ///< share (4)
    bool is_rigid_ = false;
};

}  // namespace tarn::details
