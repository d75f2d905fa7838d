#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn::program {

/// The unit of the coordinates in files that do not state one. Results are always in millimetres.
enum class LengthUnit { Millimetre, Centimetre, Metre, Inch };

/// How many millimetres one of the unit is; exact as decimals.
double MillimetresPer(LengthUnit unit);

/// The names by which a user says a unit: mm, cm, m, in.
std::vector<std::string> LengthUnitNames();

/// The unit of a name. Throws `std::invalid_argument` for any other text.
LengthUnit ParseLengthUnit(std::string_view name);

}  // namespace tarn::program
