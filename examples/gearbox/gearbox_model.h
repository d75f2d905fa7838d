#pragma once

#include "gearbox/solid.h"

#include <string>
#include <vector>

/// \file
/// A two-stage spur gearbox in millimetres: x across the three shafts, y up, z along the shafts. The input
/// shaft leaves the housing at the front (+z), the output shaft at the back.

namespace gearbox {

/// What a part belongs to.
enum class Group { Housing, InputStage, IntermediateStage, OutputStage, Fasteners };
std::string GroupName(Group group);

struct Part {
    std::string name;  ///< lower case with underscores; serves as file name
    Group group = Group::Housing;
    Solid solid;  ///< in the frame of the gearbox
};

/// Two parts that interfere, or come too near each other, on purpose.
struct Fault {
    std::string first;
    std::string second;
    std::string what;
};

/// The few dimensions that the faulty gearbox gets wrong, with their right values.
struct CriticalDimensions {
    double input_shaft_x = -80;         ///< the first stage's centre distance, to the left
    double output_shaft_x = 95;         ///< the second stage's centre distance
    double input_cap_bolt_length = 20;  ///< of the first bolt of the front input cap
    double output_journal_radius = 14.4;
    double wheel_keyway_width = 6.2;  ///< in the hub of the intermediate wheel
    double output_sleeve_end = 37;    ///< towards the back bearing
    double output_cap_play = 0.1;     ///< between the front output cap and the bearing behind it
};

/// The least distance that parts are meant to keep, in millimetres: a little less than what is drawn between
/// them (see `kSlip`).
inline constexpr double kLeastClearance = 0.07;

/// As drawn: nothing interferes, and all parts keep `kLeastClearance`.
CriticalDimensions SoundDimensions();
/// As built: what `DeliberateFaults` lists interferes, what `TightPlaces` lists does not keep
/// `kLeastClearance`, and nothing else.
CriticalDimensions FaultyDimensions();
const std::vector<Fault>& DeliberateFaults();
const std::vector<Fault>& TightPlaces();

/// All parts, each a closed surface. The same dimensions always give the same parts in the same order.
std::vector<Part> MakeGearbox(const CriticalDimensions& dimensions);

}  // namespace gearbox
