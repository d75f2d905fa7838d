#pragma once

#include "readers/model.h"

#include "tarn/triangle_data.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace tarn::program {

/// What a reader promises of all that it accepts. Ends the process where it does not hold.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

inline void RequireFinite(const std::vector<tarn::TriangleData>& triangles) {
    Require(!triangles.empty());
    for (const tarn::TriangleData& triangle : triangles) {
        const auto coordinates = std::bit_cast<std::array<double, 9>>(triangle);
        Require(std::ranges::all_of(coordinates, [](double value) { return std::isfinite(value); }));
    }
}

inline void RequireModel(const Model& model) {
    for (const Mesh& mesh : model.meshes) RequireFinite(mesh.triangles);
    Require(!model.parts.empty());
    for (const Part& part : model.parts) {
        Require(part.owner < model.owners.size() && !part.meshes.empty());
        for (const std::size_t mesh : part.meshes) Require(mesh < model.meshes.size());
        Require(std::ranges::all_of(part.placement.m, [](double value) { return std::isfinite(value); }));
    }
}

}  // namespace tarn::program
