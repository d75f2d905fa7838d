#pragma once

#include <cstdint>

/// \file
/// Two enumerations have an enumerator `None`, which some system headers define as a macro: include those
/// after this one, or undefine it.

namespace Ostrel::Quarrix::Collisions {

/// What is checked for one pair of elements.
enum class CheckCoupleConfiguration : std::int32_t {
    None = 0,
    Intersection = 1,
    AlmostCollision = 2,  ///< nearness within a clearance
    AllowTouch = 3,       ///< intersection, with touching allowed
};

/// How much a check reports.
enum class CheckResultType : std::int32_t {
    FirstInterferenceStop = 0,
    FirstInterferenceStopWithTriangles = 1,
    AllInterferences = 2,
    AllInterferencesWithTriangles = 3,
};

/// The overall kind of interference in a collision result.
enum class InterferenceResultType : std::int32_t { None = 0, Near = 1, Intersect = 2, Touch = 3 };

/// A choice that a detector accepts and does not heed.
enum class ConcurrencyMode : std::int32_t { Single = 0, Multiple = 1 };

/// What a merge of proximity configurations is asked to do with a pair that is present.
enum class MergePolicy : std::int32_t { OverwriteExisting = 0, RetainExisting = 1 };

}  // namespace Ostrel::Quarrix::Collisions
