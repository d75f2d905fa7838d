#pragma once

#include <string_view>

namespace tarn::program {

/// A coordinate of a text file, times `millimetres_per_unit`. The whole word must be one decimal number; a
/// leading plus sign is allowed, and a number too small for a double reads as 0. The locale plays no part.
/// Throws `FormatError`, without a place, for a word that is no number, and for a value that is not finite,
/// before or after the conversion.
double ParseCoordinate(std::string_view word, double millimetres_per_unit);

/// The same conversion and check for a coordinate that is a number already.
double ConvertCoordinate(double value, double millimetres_per_unit);

}  // namespace tarn::program
