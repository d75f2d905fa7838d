#include "gearbox/layout.h"

#include <cmath>
#include <numbers>

namespace gearbox {

namespace {

constexpr double kPi = std::numbers::pi;

// The shafts' seats. Where a keyway runs out, the next step is thinner than the keyway's floor.
constexpr double kInputSeat = 13.2;
constexpr double kIntermediateSeat = 16.5;
constexpr double kOutputSeat = 19.5;
constexpr KeySize kInputKey{5, 5, 10.2};
constexpr KeySize kIntermediateKey{6, 6, 13};
constexpr KeySize kOutputKey{8, 7, 15.5};
// The ends that leave the housing carry keys for couplings.
constexpr double kInputEnd = 8.5;
constexpr double kOutputEnd = 13;
constexpr KeySize kInputCouplingKey{5, 5, 5.6};
constexpr KeySize kOutputCouplingKey{8, 7, 9};

// A wheel is lighter between rim and hub, where a web with round holes remains.
struct WheelBody {
    double rim_radius;
    double hub_radius;
    double web_height;
    double hole_radius;
};

Solid Wheel(const Contour& teeth, const Contour& bore, const WheelBody& body, double from, double to) {
    const Region full{teeth, Circle({}, body.rim_radius), Circle({}, body.hub_radius), bore};
    Region web{teeth, bore};
    const double hole_distance = (body.rim_radius + body.hub_radius) / 2;
    for (int i = 0; i < 6; ++i) {
        const double angle = kPi / 3 * i;
        web.push_back(
            Circle({hole_distance * std::cos(angle), hole_distance * std::sin(angle)}, body.hole_radius));
    }
    const double side = (to - from - body.web_height) / 2;
    return Stack(from, {Slice::Straight(side, full), Slice::Straight(body.web_height, web),
                        Slice::Straight(side, full)});
}

Solid Pinion(const Contour& teeth, const Contour& bore, double from, double to) {
    return Stack(from, {Slice::Straight(to - from, {teeth, bore})});
}

// Adds parts to one shaft line, its bearings first. Solids come about the z axis and are moved onto the line.
class LineAssembly final {
public:
    LineAssembly(std::vector<Part>& parts, const ShaftLine& line) : parts_(parts), line_(line) {
        AddBearing(End::Front);
        AddBearing(End::Back);
    }

    void Add(const std::string& name, const Solid& solid, End end = End::Front) {
        parts_.push_back({name, line_.group, Placed(solid, PlacementAt(end, {line_.x, 0}, 0))});
    }

    void AddSeal(const SealSize& size, End end) {
        const double from = kCapInside + kCapFloor + kSlip;
        const Solid seal = ShaftSeal(size.journal_radius + kSlip, size.outer_radius, size.width);
        parts_.push_back(
            {"seal_" + line_.name, line_.group, Placed(seal, PlacementAt(end, {line_.x, 0}, from))});
    }

private:
    void AddBearing(End end) {
        const tarn::MATRIX placement = PlacementAt(end, {line_.x, 0}, kBearingInside);
        const std::string name = "bearing_" + line_.name + "_" + EndName(end);
        parts_.push_back({name + "_outer", line_.group, Placed(BearingOuterRing(line_.bearing), placement)});
        parts_.push_back({name + "_inner", line_.group, Placed(BearingInnerRing(line_.bearing), placement)});
        parts_.push_back({name + "_balls", line_.group, Placed(BearingBalls(line_.bearing), placement)});
    }

    std::vector<Part>& parts_;
    const ShaftLine& line_;
};

Contour Journal(const ShaftLine& line) {
    return Circle({}, line.bearing.bore_radius - kSlip);
}

Contour Bore(double seat_radius, const Keyway& keyway) {
    return KeyedCircle(seat_radius + kSlip, keyway);
}

// A bearing's inner ring rests on a shoulder or on a sleeve that ends here.
constexpr double kShoulder = kBearingInside - kSlip;

void AddInputLine(std::vector<Part>& parts, const ShaftLine& line) {
    LineAssembly assembly(parts, line);
    assembly.Add("shaft_input",
                 SteppedShaft(-52.3, {{-kShoulder, Journal(line)},
                                      {0, Circle({}, 12)},
                                      {5.9, Circle({}, 16)},
                                      {28.2, KeyedCircle(kInputSeat, kInputKey.InShaft())},
                                      {53, Journal(line)},
                                      {75, Circle({}, kInputSeal.journal_radius)},
                                      {105, KeyedCircle(kInputEnd, kInputCouplingKey.InShaft())}}));
    const Contour teeth = GearOutline(kInputPinion, 0);
    assembly.Add("gear_input_pinion", Pinion(teeth, Bore(kInputSeat, kInputKey.InHub()), 6, 28));
    assembly.Add("key_input_pinion", ParallelKey(kInputKey, 7, 27));
    assembly.Add("key_input_coupling", ParallelKey(kInputCouplingKey, 79, 103));
    assembly.Add("sleeve_input", Sleeve(line.bearing.bore_radius, 13.5, 28.3, kShoulder));
    assembly.AddSeal(kInputSeal, End::Front);
}

void AddIntermediateLine(std::vector<Part>& parts, const ShaftLine& line, double wheel_keyway_width) {
    LineAssembly assembly(parts, line);
    const Contour seat = KeyedCircle(kIntermediateSeat, kIntermediateKey.InShaft());
    assembly.Add(
        "shaft_intermediate",
        SteppedShaft(
            -53,
            {{-30.2, Journal(line)}, {0.1, seat}, {6.9, Circle({}, 21)}, {27.2, seat}, {53, Journal(line)}}));
    const Contour wheel_teeth = GearOutlineWithSpaceAt(kIntermediateWheel, kPi);
    const Contour wheel_bore = Bore(kIntermediateSeat, {wheel_keyway_width, kIntermediateKey.InHub().floor});
    assembly.Add("gear_intermediate_wheel", Wheel(wheel_teeth, wheel_bore, {49, 26, 8, 8}, 7, 27));
    assembly.Add("key_intermediate_wheel", ParallelKey(kIntermediateKey, 8, 26));
    const Contour pinion_teeth = GearOutline(kIntermediatePinion, 0);
    const Contour pinion_bore = Bore(kIntermediateSeat, kIntermediateKey.InHub());
    assembly.Add("gear_intermediate_pinion", Pinion(pinion_teeth, pinion_bore, -30, 0));
    assembly.Add("key_intermediate_pinion", ParallelKey(kIntermediateKey, -29, -1));
    assembly.Add("sleeve_intermediate_front", Sleeve(line.bearing.bore_radius, 16.5, 27.3, kShoulder));
    assembly.Add("sleeve_intermediate_back", Sleeve(line.bearing.bore_radius, 16.5, 30.3, kShoulder),
                 End::Back);
}

void AddOutputLine(std::vector<Part>& parts, const ShaftLine& line, const CriticalDimensions& dimensions) {
    LineAssembly assembly(parts, line);
    assembly.Add("shaft_output",
                 SteppedShaft(-117, {{-78, KeyedCircle(kOutputEnd, kOutputCouplingKey.InShaft())},
                                     {-54.5, Circle({}, dimensions.output_journal_radius)},
                                     {-29.2, Journal(line)},
                                     {-0.9, KeyedCircle(kOutputSeat, kOutputKey.InShaft())},
                                     {6, Circle({}, 24)},
                                     {kShoulder, Circle({}, 18)},
                                     {54.5, Journal(line)}}));
    const Contour teeth = GearOutlineWithSpaceAt(kOutputWheel, kPi);
    const Contour bore = Bore(kOutputSeat, kOutputKey.InHub());
    assembly.Add("gear_output_wheel", Wheel(teeth, bore, {57, 31, 10, 9}, -29, -1));
    assembly.Add("key_output_wheel", ParallelKey(kOutputKey, -28, -2));
    assembly.Add("key_output_coupling", ParallelKey(kOutputCouplingKey, -115, -82));
    assembly.Add("sleeve_output", Sleeve(line.bearing.bore_radius, 19, 29.3, dimensions.output_sleeve_end),
                 End::Back);
    assembly.AddSeal(kOutputSeal, End::Back);
}

}  // namespace

ShaftLines LayOutShafts(const CriticalDimensions& dimensions) {
    return {{"input", Group::InputStage, dimensions.input_shaft_x, {10, 23.5, 14, 8}},
            {"intermediate", Group::IntermediateStage, 0, {12.5, 26, 15, 9}},
            {"output", Group::OutputStage, dimensions.output_shaft_x, {15, 31, 16, 9}}};
}

std::string EndName(End end) {
    return end == End::Front ? "front" : "back";
}

tarn::MATRIX PlacementAt(End end, const Point& point, double distance) {
    const double side = end == End::Front ? 1 : -1;
    return {{side, 0, 0, point.x, 0, 1, 0, point.y, 0, 0, side, side * distance}};
}

std::vector<Part> MakeDriveTrain(const CriticalDimensions& dimensions) {
    const ShaftLines lines = LayOutShafts(dimensions);
    std::vector<Part> parts;
    AddInputLine(parts, lines.input);
    AddIntermediateLine(parts, lines.intermediate, dimensions.wheel_keyway_width);
    AddOutputLine(parts, lines.output, dimensions);
    return parts;
}

}  // namespace gearbox
