#pragma once

#include "tarn/triangle_data.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tarn::program {

/// Median edge lengths, in millimetres, between which the triangle tests' absolute tolerances do no harm.
/// Below, the tests pass over crossings; above, they see coplanar faces cross that are apart.
inline constexpr double kSmallestTrustedMedianEdge = 0.2;
inline constexpr double kLargestTrustedMedianEdge = 500.0;

/// The median of the lengths of all edges, those of neighbours counted twice; the upper one of two middles.
/// The triangles must not be none.
double MedianEdgeLength(const std::vector<tarn::TriangleData>& triangles);

/// Why checks of these triangles (in millimetres) deserve doubt, as one sentence, or an empty text.
/// `kept_count` is how many of them the engine kept.
std::string DescribeDoubtfulSize(const std::vector<tarn::TriangleData>& triangles, std::size_t kept_count);

}  // namespace tarn::program
