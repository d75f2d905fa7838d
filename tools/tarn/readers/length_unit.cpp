#include "readers/length_unit.h"

#include <array>
#include <stdexcept>

namespace tarn::program {
namespace {

struct UnitRow {
    LengthUnit unit;
    std::string_view name;
    double millimetres;
};

constexpr std::array<UnitRow, 4> kUnits = {{
    {LengthUnit::Millimetre, "mm", 1.0},
    {LengthUnit::Centimetre, "cm", 10.0},
    {LengthUnit::Metre, "m", 1000.0},
    {LengthUnit::Inch, "in", 25.4},
}};

}  // namespace

double MillimetresPer(LengthUnit unit) {
    for (const UnitRow& row : kUnits) {
        if (row.unit == unit) return row.millimetres;
    }
    throw std::invalid_argument("not a length unit");
}

std::vector<std::string> LengthUnitNames() {
    std::vector<std::string> names;
    names.reserve(kUnits.size());
    for (const UnitRow& row : kUnits) names.emplace_back(row.name);
    return names;
}

LengthUnit ParseLengthUnit(std::string_view name) {
    for (const UnitRow& row : kUnits) {
        if (row.name == name) return row.unit;
    }
    throw std::invalid_argument("not a length unit: " + std::string(name));
}

}  // namespace tarn::program
