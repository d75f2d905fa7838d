#pragma once

#include "core/triangle.h"

#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace tarn::details {

/// Two intersecting triangles of two bodies, in world coordinates. Null when there are none. The triangles
/// live in the bodies' hierarchies and stay as they are until a body moves.
struct TriangleHit {
    const Triangle* first = nullptr;
    const Triangle* second = nullptr;

    explicit operator bool() const { return first != nullptr; }
};

/// Four triangles side by side, as wide instructions want them: coordinate by coordinate.
struct alignas(32) TriangleGroup {
    static constexpr std::size_t kLanes = 4;

    double coordinate[9][kLanes];
};

/// Tests the triangles of leaf pairs: two triangles are a hit where `TrianglesIntersect` says so and they are
/// not shown apart (see `AreShownApart`). The former does not normalise its signed values: by rounding noise
/// alone it sees large coplanar faces cross that are far apart.
///
/// Holds the room for one leaf in groups, so one serves a whole descent. It allocates once, at the first leaf
/// pair, and only where the trees' leaf numbers are large.
class LeafTest {
public:
    /// `most_triangles` is the larger of the two trees' leaf numbers.
    explicit LeafTest(std::size_t most_triangles);
    LeafTest(const LeafTest&) = delete;
    LeafTest& operator=(const LeafTest&) = delete;

    /// The first hit: triangles of the first leaf in order, against each those of the second in order.
    TriangleHit FindFirstHit(std::span<const Triangle> first_leaf, std::span<const Triangle> second_leaf);

private:
    /// Room for leaves of the usual five triangles, and somewhat more.
    static constexpr std::size_t kInlineGroups = 4;

    TriangleGroup* Room();

    std::size_t most_groups_;
    std::array<TriangleGroup, kInlineGroups> inline_groups_;
    std::unique_ptr<TriangleGroup[]> heap_groups_;
};

}  // namespace tarn::details
