#pragma once

#include "gearbox/contour.h"
#include "gearbox/solid.h"

#include <vector>

/// \file
/// Standard parts, each about the z axis. What touches in reality is modelled with `kSlip` between the faces:
/// faces in one plane leave the answer of an interference check to rounding, a tenth of a millimetre does
/// not.

namespace gearbox {

/// Clearance between faces that are in contact, in millimetres: more than twice the error of circles' chords.
inline constexpr double kSlip = 0.1;

struct BoltSize {
    double radius = 0;
    double across_flats = 0;
    double head_height = 0;
};
inline constexpr BoltSize kM5{2.5, 8, 3.5};
inline constexpr BoltSize kM6{3, 10, 4};
inline constexpr BoltSize kM8{4, 13, 5.3};

/// The head stands on the plane z = 0, the shank of the given length points along -z. Threads are not
/// modelled; all holes are clearance holes.
Solid HexagonBolt(const BoltSize& size, double length);
/// From z = 0 upwards.
Solid HexagonNut(const BoltSize& size, double height);
/// What a bolt of this size needs in the parts that it holds together.
Contour BoltHole(const BoltSize& size, const Point& centre);

/// A deep-groove ball bearing from z = 0 to its width.
struct BearingSize {
    double bore_radius = 0;
    double outer_radius = 0;
    double width = 0;
    int balls = 0;
};
Solid BearingInnerRing(const BearingSize& size);
Solid BearingOuterRing(const BearingSize& size);
Solid BearingBalls(const BearingSize& size);

/// A lip seal from z = 0 to its width; the lip is the narrowest place.
Solid ShaftSeal(double lip_radius, double outer_radius, double width);
/// A plain ring between two heights.
Solid Sleeve(double inner_radius, double outer_radius, double from, double to);

/// A parallel key with the keyways that suit it. `floor` is how far from the axis the shaft's keyway ends.
struct KeySize {
    double width = 0;
    double height = 0;
    double floor = 0;

    Keyway InShaft() const { return {width + 2 * kSlip, floor}; }
    Keyway InHub() const { return {width + 2 * kSlip, floor + height + 3 * kSlip}; }
};
Solid ParallelKey(const KeySize& size, double from, double to);

/// One step of a shaft: its outline, and the height at which it ends.
struct ShaftStep {
    double end = 0;
    Contour outline;
};
/// A shaft from the height `start` through all steps, with both ends chamfered.
Solid SteppedShaft(double start, const std::vector<ShaftStep>& steps);

}  // namespace gearbox
