#include "gearbox/gearbox_model.h"

#include "gearbox/layout.h"

#include <iterator>

namespace gearbox {

namespace {

// Longest edge of any triangle, in millimetres.
constexpr double kLongestEdge = 40;

}  // namespace

std::string GroupName(Group group) {
    switch (group) {
        case Group::Housing:
            return "housing";
        case Group::InputStage:
            return "input stage";
        case Group::IntermediateStage:
            return "intermediate stage";
        case Group::OutputStage:
            return "output stage";
        case Group::Fasteners:
            return "fasteners";
    }
    return {};
}

CriticalDimensions SoundDimensions() {
    return {};
}

// Where parts interfere, the deviation exceeds the clearance that it uses up by several tenths of a
// millimetre; where they are too near, about 0.05 mm is left. So no tolerance decides.
CriticalDimensions FaultyDimensions() {
    CriticalDimensions dimensions;
    dimensions.output_shaft_x -= 1.5;
    dimensions.input_cap_bolt_length += 14;
    dimensions.output_journal_radius += 0.6;
    dimensions.wheel_keyway_width -= 1.2;
    dimensions.input_shaft_x += 0.28;
    dimensions.output_sleeve_end += 0.05;
    dimensions.output_cap_play -= 0.05;
    return dimensions;
}

const std::vector<Fault>& DeliberateFaults() {
    static const std::vector<Fault> faults{
        {"gear_intermediate_pinion", "gear_output_wheel",
         "the bores for the output shaft are 1.5 mm too near, so the teeth mesh too deep"},
        {"bolt_cap_input_front_1", "wall_front",
         "the bolt is 14 mm too long and comes through the floor of its blind hole"},
        {"shaft_output", "seal_output", "the journal is 0.6 mm too thick for the lip of the seal"},
        {"gear_intermediate_wheel", "key_intermediate_wheel",
         "the keyway of the hub is 1.2 mm too narrow for the key"},
    };
    return faults;
}

const std::vector<Fault>& TightPlaces() {
    static const std::vector<Fault> places{
        {"gear_input_pinion", "gear_intermediate_wheel",
         "the bores for the input shaft are 0.28 mm too near, so the teeth have hardly any play"},
        {"sleeve_output", "bearing_output_back_inner", "the sleeve is 0.05 mm too long"},
        {"cap_output_front", "bearing_output_front_outer", "the cap's spigot is 0.05 mm too long"},
    };
    return places;
}

std::vector<Part> MakeGearbox(const CriticalDimensions& dimensions) {
    std::vector<Part> parts = MakeHousing(dimensions);
    std::vector<Part> drive_train = MakeDriveTrain(dimensions);
    std::move(drive_train.begin(), drive_train.end(), std::back_inserter(parts));
    for (Part& part : parts) part.solid = WithShortEdges(part.solid, kLongestEdge);
    return parts;
}

}  // namespace gearbox
