#include "mesh_size_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>

namespace tarn::program {
namespace {

using Coordinates = std::array<double, 9>;

/// Infinite only where it must be, never NaN: squares may overflow, and the library's function of three
/// arguments gives NaN for an infinite one. Squares that vanish do no harm: such an edge is too short anyway.
double Length(double x, double y, double z) {
    const double squared = x * x + y * y + z * z;
    return std::isfinite(squared) ? std::sqrt(squared) : std::hypot(std::hypot(x, y), z);
}

}  // namespace

std::vector<tarn::TriangleData> Placed(const std::vector<tarn::TriangleData>& triangles,
                                       const tarn::MATRIX& m) {
    std::vector<tarn::TriangleData> placed;
    placed.reserve(triangles.size());
    for (const tarn::TriangleData& triangle : triangles) {
        const auto local = std::bit_cast<Coordinates>(triangle);
        Coordinates world{};
        for (std::size_t at = 0; at < 9; at += 3) {
            for (std::size_t row = 0; row < 3; ++row) {
                world[at + row] = m[4 * row] * local[at] + m[4 * row + 1] * local[at + 1] +
                                  m[4 * row + 2] * local[at + 2] + m[4 * row + 3];
            }
        }
        placed.push_back(std::bit_cast<tarn::TriangleData>(world));
    }
    return placed;
}

PartSize MeasurePart(const std::vector<tarn::TriangleData>& triangles) {
    PartSize size;
    std::vector<double> lengths;
    lengths.reserve(3 * triangles.size());
    for (const tarn::TriangleData& t : triangles) {
        lengths.push_back(Length(t.v1x - t.v0x, t.v1y - t.v0y, t.v1z - t.v0z));
        lengths.push_back(Length(t.v2x - t.v1x, t.v2y - t.v1y, t.v2z - t.v1z));
        lengths.push_back(Length(t.v0x - t.v2x, t.v0y - t.v2y, t.v0z - t.v2z));
        for (const double coordinate : std::bit_cast<Coordinates>(t)) {
            // A NaN, which infinite intermediate results leave, is as far away as can be.
            const double distance = std::isnan(coordinate) ? HUGE_VAL : std::abs(coordinate);
            size.reach = std::max(size.reach, distance);
        }
    }
    if (!std::isfinite(size.reach)) return size;
    size.longest_edge = *std::ranges::max_element(lengths);
    const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
    std::ranges::nth_element(lengths, middle);
    size.median_edge = *middle;
    return size;
}

SizeDoubt DoubtOf(const PartSize& size) {
    if (size.median_edge < kSmallestTrustedMedianEdge) return SizeDoubt::TooFine;
    if (size.longest_edge * size.longest_edge * size.reach > kLargestTrustedEdgeSquaredTimesReach) {
        return SizeDoubt::TooLarge;
    }
    return SizeDoubt::None;
}

std::string DescribeDoubt(SizeDoubt doubt, const PartSize& size) {
    if (doubt == SizeDoubt::TooFine) {
        return fmt::format(
            "median edge {:.3g} mm is below {} mm: the triangle tests' absolute tolerances can hide "
            "crossings; is the unit right?",
            size.median_edge, kSmallestTrustedMedianEdge);
    }
    return fmt::format(
        "edges of up to {:.3g} mm that reach to {:.3g} mm from the origin: rounding can invent crossings of "
        "coplanar faces; is the unit right?",
        size.longest_edge, size.reach);
}

}  // namespace tarn::program
