#include "mesh_size_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tarn::program {

double MedianEdgeLength(const std::vector<tarn::TriangleData>& triangles) {
    std::vector<double> lengths;
    lengths.reserve(3 * triangles.size());
    // Without overflow for any finite vertices whose difference is finite; infinite otherwise, never NaN.
    for (const tarn::TriangleData& t : triangles) {
        lengths.push_back(std::hypot(t.v1x - t.v0x, t.v1y - t.v0y, t.v1z - t.v0z));
        lengths.push_back(std::hypot(t.v2x - t.v1x, t.v2y - t.v1y, t.v2z - t.v1z));
        lengths.push_back(std::hypot(t.v0x - t.v2x, t.v0y - t.v2y, t.v0z - t.v2z));
    }
    const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
    std::ranges::nth_element(lengths, middle);
    return *middle;
}

std::string DescribeDoubtfulSize(const std::vector<tarn::TriangleData>& triangles, std::size_t kept_count) {
    if (kept_count == 0) {
        return fmt::format(
            "none of its {} triangles is valid (each has an edge of 0.0003 mm or less), so it interferes "
            "with nothing",
            triangles.size());
    }
    const double median = MedianEdgeLength(triangles);
    if (median < kSmallestTrustedMedianEdge) {
        return fmt::format(
            "median edge {:.3g} mm is below {} mm: the triangle tests' absolute tolerances can hide "
            "crossings; is "
            "the unit right?",
            median, kSmallestTrustedMedianEdge);
    }
    if (median > kLargestTrustedMedianEdge) {
        return fmt::format(
            "median edge {:.3g} mm is above {} mm: the triangle tests' absolute tolerances can invent "
            "crossings; is "
            "the unit right?",
            median, kLargestTrustedMedianEdge);
    }
    return {};
}

}  // namespace tarn::program
