#pragma once

#include "readers/model.h"

#include <string_view>

namespace tarn::program {

/// Reads the bytes of an OBJ file and converts its coordinates to millimetres.
///  (1) Vertices (`v`) and faces (`f`) count; texture coordinates, normals, groups, materials, points and
///      lines mean nothing. Other lines are passed over with one warning for all.
///  (2) Each object (`o`) that has faces is a part of its own, as are the faces before the first object. A
///      file without objects is one part. Groups (`g`) do not divide.
///  (3) A face of more than three corners becomes a fan about its first corner. That is right for convex
///      faces; a face with an inward corner gets triangles that reach out of it.
///  (4) A face names vertices above it, counted from 1, or from the latest one down as -1, -2, ...
///  (5) A fourth coordinate must be 1; colours behind the coordinates are accepted and mean nothing.
///  (6) Every coordinate is finite, or the file is refused.
/// A line goes on in the next one behind a backslash at its end. Throws `FormatError`, naming the line.
Model ReadObj(std::string_view bytes, double millimetres_per_unit);

}  // namespace tarn::program
