#pragma once

#include "core/aabb_hierarchy.h"
#include "core/box.h"
#include "core/vector3.h"

namespace tarn::details {

/// Two hierarchies seen from the first one's frame, for tests that ask whether boxes lie apart as they are
/// turned, where world boxes swell. A test looks along fifteen directions: the three edges of either box and
/// their nine cross products (S. Gottschalk, M. C. Lin, D. Manocha, "OBBTree", 1996). All boxes of a tree
/// point the same way, so the rotation between them is computed once.
///
/// Thin directions of the triangles themselves come on top: the normals of slabs.
///
/// The tests err on one side only: boxes shown apart are apart, and so are all triangles within, as they
/// stand in world coordinates with all their rounding. Three things come between the formulas and that, each
/// with its share in a margin. Let U bound how far points of the two trees lie from each other, W the
/// magnitude of world coordinates and of the terms that add up to them, and u = 2^-53.
///  (1) Rounding. Placing a vertex moves it by at most 4 u W an axis. The formulas below are sums of at most
///      a dozen products, each bounded by W: 60 u W.  Together less than 128 u W.
///  (2) Placements that are not quite rotations. With e the largest entry of |M^T M - 1| over both rotation
///      parts M, the frame's transposes for inverses cost at most some 20 e U along any of the directions.
///      The share is 32 e U. Where e is above 1e-4, or no number, nothing is shown apart.
///  (3) Single precision, in the wide tests only: terms are bounded by 2 U, a dozen of them, each off by a
///      few times 2^-24. The share is 96 * 2^-24 U.
/// A cross product of two unit vectors is no longer than one, so the margins hold for it as it stands.
///
/// The wide tests have all shares, the first two doubled; the test of leaves has the first two. So what a
/// wide test leaves out the test of leaves would find apart as well: boxes only shrink on the way down, and
/// with them what they reach along any direction.
class RelativeFrame {
public:
    /// At the current placements, of trees that are not empty.
    RelativeFrame(const AABBHierarchy& first, const AABBHierarchy& second);

    /// Whether anything can be shown apart. False for placements that are not rigid, or out of any
    /// reasonable range, where single precision overflows.
    bool IsRigid() const { return is_rigid_; }

    /// Whether two leaves, one of each tree, are shown to lie apart: their boxes, or their triangles along the
    /// normal of a slab above one of them (see `WideNode`). Their triangles are not tested then: that is part
    /// of what an intersection is, for searches of all kinds.
    bool LeavesAreApart(const AABBHierarchyNode& first_leaf, const AABBHierarchyNode& second_leaf) const {
        return AreApart(first_leaf.LocalBox(), second_leaf.LocalBox(), leaf_margin_) ||
               SlabsAreApart(first_leaf, second_leaf);
    }
    /// Whether the boxes of two nodes are, and so all leaves below.
    bool SubtreesAreApart(const AABBHierarchyNode& first_node, const AABBHierarchyNode& second_node) const {
        return AreApart(first_node.LocalBox(), second_node.LocalBox(), 2.0 * leaf_margin_);
    }

    /// Whether everything below the two nodes is shown to lie farther apart than `distance`, triangles and
    /// centres of boxes.
    bool SubtreesAreFartherThan(double distance,
                                const AABBHierarchyNode& first_node,
                                const AABBHierarchyNode& second_node) const {
        return AreApart(first_node.LocalBox(), second_node.LocalBox(), distance + 2.0 * leaf_margin_);
    }

    /// Column j is the second frame's axis j in the first frame.
    const double (&Rotation() const)[3][3] { return rotation_; }
    /// From the first root's centre to the second's, in the first frame.
    const Vector3& Offset() const { return offset_; }
    /// The margin of wide tests.
    double WideMargin() const { return wide_margin_; }
    /// How far the placements are from rotations: bounds the entries of |M^T M - 1|.
    double Skew() const { return skew_; }

private:
    bool AreApart(const Box& first_box, const Box& second_box, double margin) const;
    bool SlabsAreApart(const AABBHierarchyNode& first_leaf, const AABBHierarchyNode& second_leaf) const;
    /// Into the other frame, relative to the origins of both.
    Vector3 ToFirst(const Vector3& point) const;
    Vector3 ToSecond(const Vector3& point) const;

    const AABBHierarchy& first_;
    const AABBHierarchy& second_;
    double rotation_[3][3];
    Vector3 offset_;
    Vector3 first_origin_;
    Vector3 second_origin_;
    double skew_;
    double leaf_margin_;
    double wide_margin_;
    bool is_rigid_;
};

}  // namespace tarn::details
