#pragma once

#include "gearbox/gearbox_model.h"
#include "gearbox/involute_gear.h"
#include "gearbox/machine_elements.h"

#include "tarn/matrix.h"

#include <string>
#include <vector>

/// \file
/// What the drive train and the housing agree on: where the shafts lie, which bearings carry them, and where
/// the walls stand. Millimetres.

namespace gearbox {

inline constexpr GearSize kInputPinion{2, 22};
inline constexpr GearSize kIntermediateWheel{2, 58};
inline constexpr GearSize kIntermediatePinion{2.5, 22};
inline constexpr GearSize kOutputWheel{2.5, 54};

// The end walls reach from here to there in front, and likewise behind.
inline constexpr double kWallInside = 36.1;
inline constexpr double kWallOutside = 58.1;
// The face of each bearing towards the gears.
inline constexpr double kBearingInside = 37.1;
// The caps' flanges on the outside of the walls, with a floor that carries the pocket of the seal.
inline constexpr double kCapInside = kWallOutside + kSlip;
inline constexpr double kCapFloor = 2;
inline constexpr double kCapThickness = 9;

/// A lip seal in the cap where a shaft leaves the housing.
struct SealSize {
    double journal_radius = 0;  ///< of the shaft for which the seal is made
    double outer_radius = 0;
    double width = 6.5;
};
inline constexpr SealSize kInputSeal{9.5, 16};
inline constexpr SealSize kOutputSeal{14.4, 23};

/// A shaft's line with the bearings at its two ends.
struct ShaftLine {
    std::string name;
    Group group = Group::Housing;
    double x = 0;
    BearingSize bearing;
};

struct ShaftLines {
    ShaftLine input;
    ShaftLine intermediate;
    ShaftLine output;

    std::vector<ShaftLine> All() const { return {input, intermediate, output}; }
};
ShaftLines LayOutShafts(const CriticalDimensions& dimensions);

/// The two ends of the gearbox. What stands at either end is modelled for the front and given half a turn
/// about the vertical for the back.
enum class End { Front, Back };
std::string EndName(End end);
tarn::MATRIX PlacementAt(End end, const Point& point, double distance);

/// The parts that turn, with their bearings, seals, sleeves and keys.
std::vector<Part> MakeDriveTrain(const CriticalDimensions& dimensions);
/// Shells, end walls and caps, with the bolts that hold them.
std::vector<Part> MakeHousing(const CriticalDimensions& dimensions);

}  // namespace gearbox
