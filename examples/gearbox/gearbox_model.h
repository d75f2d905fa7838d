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

/// Two parts that interfere on purpose.
struct Fault {
    std::string first;
    std::string second;
    std::string what;
};

/// The few dimensions that the faulty gearbox gets wrong, with their right values.
struct CriticalDimensions {
    double output_shaft_x = 95;         ///< the second stage's centre distance
    double input_cap_bolt_length = 20;  ///< of the first bolt of the front input cap
    double output_journal_radius = 14.4;
    double wheel_keyway_width = 6.2;  ///< in the hub of the intermediate wheel
};

/// As drawn: nothing interferes.
CriticalDimensions SoundDimensions();
/// As built: what `DeliberateFaults` lists interferes, and nothing else.
CriticalDimensions FaultyDimensions();
const std::vector<Fault>& DeliberateFaults();

/// All parts, each a closed surface. The same dimensions always give the same parts in the same order.
std::vector<Part> MakeGearbox(const CriticalDimensions& dimensions);

}  // namespace gearbox
