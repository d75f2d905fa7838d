#pragma once

#include "core/plane.h"
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

/// Tests the triangles of leaf pairs. Holds the room for their records, so one serves a whole descent. It
/// allocates once, at the first leaf pair, and only where the trees' leaf numbers are large.
class LeafTest {
public:
    /// `most_triangles` is the sum of the two trees' leaf numbers.
    explicit LeafTest(std::size_t most_triangles);
    LeafTest(const LeafTest&) = delete;
    LeafTest& operator=(const LeafTest&) = delete;

    /// The first intersecting pair: triangles of the first leaf in order, against each those of the second in
    /// order.
    TriangleHit FindFirstHit(std::span<const Triangle> first_leaf, std::span<const Triangle> second_leaf);

private:
    /// A triangle with its plane, computed once for all triangles of the other leaf.
    struct Record {
        Triangle triangle;
        Plane plane;
    };

    /// Two leaves of the usual five triangles fit several times.
    static constexpr std::size_t kInlineRecords = 32;

    static void Prepare(std::span<const Triangle> leaf, Record* records);

    /// Room for the records of two leaves.
    Record* Room();

    std::size_t most_triangles_;
    std::array<Record, kInlineRecords> inline_records_;
    std::unique_ptr<Record[]> heap_records_;
};

}  // namespace tarn::details
