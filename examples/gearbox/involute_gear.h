#pragma once

#include "gearbox/contour.h"

namespace gearbox {

/// A spur gear with involute teeth on the standard 20 degree rack: addendum one module, dedendum 1.25
/// modules, no profile shift.
struct GearSize {
    double module = 0;  ///< pitch diameter per tooth, in millimetres
    int teeth = 0;      ///< 17 or more, since undercut is not modelled

    double PitchRadius() const { return module * teeth / 2; }
    double TipRadius() const { return PitchRadius() + module; }
    double RootRadius() const { return PitchRadius() - 1.25 * module; }
};

/// The distance at which two gears of one module mesh as designed.
inline double CentreDistance(const GearSize& first, const GearSize& second) {
    return first.PitchRadius() + second.PitchRadius();
}

/// The outline about the origin with the centre of one tooth in direction `angle` (radians). Each tooth is
/// thinned so that two such gears at their centre distance have 0.3 mm of backlash along the pitch circle.
Contour GearOutline(const GearSize& size, double angle);

/// The same with the centre of a tooth space in direction `angle`.
Contour GearOutlineWithSpaceAt(const GearSize& size, double angle);

}  // namespace gearbox
