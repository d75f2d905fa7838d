#pragma once

#include <array>

/// \file
/// The words of scene files. The tree is
///     scene type="collision" | "proximity"
///         owners
///             owner id                            one for each owner of a body, ascending, unsigned
///         elements
///             element owner name id leaves depth  one for each body
///                 stl count
///                     triangle x0 ... z2          element coordinates
///         configuration
///             pair first second [clearance]       identifiers; the clearance in proximity scenes
/// Identifiers of owners are compared as unsigned and written as signed 64-bit numbers.

namespace tarn::details::scene {

inline constexpr const char* kScene = "scene";
inline constexpr const char* kType = "type";
inline constexpr const char* kCollision = "collision";
inline constexpr const char* kProximity = "proximity";

inline constexpr const char* kOwners = "owners";
inline constexpr const char* kOwner = "owner";
inline constexpr const char* kId = "id";

inline constexpr const char* kElements = "elements";
inline constexpr const char* kElement = "element";
inline constexpr const char* kName = "name";
inline constexpr const char* kLeaves = "leaves";
inline constexpr const char* kDepth = "depth";
inline constexpr const char* kStl = "stl";
inline constexpr const char* kCount = "count";
inline constexpr const char* kTriangle = "triangle";
/// In the order of the fields of `TriangleData`.
inline constexpr std::array<const char*, 9> kCoordinates{"x0", "y0", "z0", "x1", "y1",
                                                         "z1", "x2", "y2", "z2"};

inline constexpr const char* kConfiguration = "configuration";
inline constexpr const char* kPair = "pair";
inline constexpr const char* kFirst = "first";
inline constexpr const char* kSecond = "second";
inline constexpr const char* kClearance = "clearance";

}  // namespace tarn::details::scene
