#include "gearbox/layout.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace gearbox {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kShellThickness = 14;
// The shells end before the walls do.
constexpr double kShellEnd = kWallInside - kSlip;
// Half the gap between the two shells.
constexpr double kSplit = kSlip / 2;
// Holes for the caps' bolts are blind and leave this much of the wall standing.
constexpr double kBlindFloor = 8;
constexpr double kCapBoltLength = 20;
constexpr double kFlangeThickness = 12;
constexpr double kFlangeWidth = 24;
// The feet are the lowest place of the gearbox, 2 mm below the shell.
constexpr double kFootLow = -106;
constexpr double kFootHeight = 14;

struct Round {
    Point centre;
    double radius;
};

// What the inside of the housing has to surround: a circle about each shaft, which leaves the gears 8 mm of
// air (the input pinion more, since the bearing's cap needs it), and the two rounded corners of the sump. The
// output shaft's right place is meant, also where its bores are made in the wrong one.
struct Interior {
    Round input;
    Round intermediate;
    Round output;
    Round left_corner;
    Round right_corner;
};

Interior MakeInterior() {
    constexpr double kAir = 8;
    constexpr double kSumpFloor = -90;
    constexpr double kCornerRadius = 15;
    const ShaftLines lines = LayOutShafts(SoundDimensions());
    const Round input{{lines.input.x, 0}, 44};
    const Round intermediate{{lines.intermediate.x, 0}, kIntermediateWheel.TipRadius() + kAir};
    const Round output{{lines.output.x, 0}, kOutputWheel.TipRadius() + kAir};
    const double left = input.centre.x - input.radius + kCornerRadius;
    const double right = output.centre.x + output.radius - kCornerRadius;
    const double corner_y = kSumpFloor + kCornerRadius;
    return {
        input, intermediate, output, {{left, corner_y}, kCornerRadius}, {{right, corner_y}, kCornerRadius}};
}

// The interior grown by `thickness`, as one convex outline.
Contour HousingOutline(double thickness) {
    const Interior interior = MakeInterior();
    std::vector<Point> points;
    for (const Round& round : {interior.input, interior.intermediate, interior.output, interior.left_corner,
                               interior.right_corner}) {
        const Contour circle = Circle(round.centre, round.radius + thickness);
        points.insert(points.end(), circle.begin(), circle.end());
    }
    return ConvexHull(std::move(points));
}

struct Outermost {
    double left;
    double right;
};

// The furthest x on either side, in the middle of the shells' thickness.
Outermost OutermostMiddles() {
    const Interior interior = MakeInterior();
    return {interior.input.centre.x - interior.input.radius - kShellThickness / 2,
            interior.output.centre.x + interior.output.radius + kShellThickness / 2};
}

// The screws that hold an end wall to the shells run in the middle of the shells' thickness.
std::vector<Point> WallScrewCentres() {
    const Interior interior = MakeInterior();
    const auto around = [](const Round& round, double degrees) {
        const double middle = round.radius + kShellThickness / 2;
        const double angle = degrees * kPi / 180;
        return Point{round.centre.x + middle * std::cos(angle), round.centre.y + middle * std::sin(angle)};
    };
    const Point low = around(interior.left_corner, 270);
    const Point left = around(interior.left_corner, 180);
    const Point right = around(interior.right_corner, 0);
    return {around(interior.output, 40), around(interior.intermediate, 102),    around(interior.input, 145),
            {left.x, left.y + 12},       {interior.output.centre.x / 4, low.y}, {right.x, right.y + 12}};
}

// The part of a convex contour on one side of the line y = level, from crossing to crossing.
Contour Beyond(const Contour& contour, double level, bool above) {
    const std::size_t size = contour.size();
    const auto is_kept = [&](std::size_t i) { return (contour[i % size].y > level) == above; };
    const auto crossing = [&](std::size_t i) {
        const Point& from = contour[i % size];
        const Point& to = contour[(i + 1) % size];
        return Point{from.x + (level - from.y) / (to.y - from.y) * (to.x - from.x), level};
    };
    std::size_t at = 0;
    while (is_kept(at) || !is_kept(at + 1)) ++at;
    Contour kept{crossing(at)};
    for (++at; is_kept(at); ++at) kept.push_back(contour[at % size]);
    kept.push_back(crossing(at - 1));
    return kept;
}

// A flange at the split with two bolt holes, made in the plane z = 0 and laid flat; `low` is its underside.
Solid SplitFlange(double centre_x, double low) {
    const double half_length = kShellEnd - 2;
    const Region region{Rectangle({-kFlangeWidth / 2, -half_length}, {kFlangeWidth / 2, half_length}),
                        BoltHole(kM8, {0, 20}), BoltHole(kM8, {0, -20})};
    return Placed(Stack(0, {Slice::Straight(kFlangeThickness - kSplit, region)}),
                  tarn::MATRIX{{1, 0, 0, centre_x, 0, 0, 1, low, 0, -1, 0, 0}});
}

// The flanges reach into the shells on either side, which makes one part of them.
std::vector<double> FlangeCentres() {
    const double distance = (kFlangeWidth + kShellThickness) / 2 - 4;
    const Outermost sides = OutermostMiddles();
    return {sides.left - distance, sides.right + distance};
}

Solid Shell(bool is_upper) {
    const double level = is_upper ? kSplit : -kSplit;
    Contour section = Beyond(HousingOutline(kShellThickness), level, is_upper);
    const Contour inside = Reversed(Beyond(HousingOutline(0), level, is_upper));
    section.insert(section.end(), inside.begin(), inside.end());
    const Region plain{section};
    Region drilled{section};
    for (const Point& centre : WallScrewCentres()) {
        if ((centre.y > 0) == is_upper) drilled.push_back(BoltHole(kM6, centre));
    }
    constexpr double kHoleDepth = 20;
    Solid solid = Stack(-kShellEnd, {Slice::Straight(kHoleDepth, drilled),
                                     Slice::Straight(2 * (kShellEnd - kHoleDepth), plain),
                                     Slice::Straight(kHoleDepth, drilled)});
    const double flange_low = is_upper ? kSplit : -kFlangeThickness;
    for (const double x : FlangeCentres()) Append(solid, SplitFlange(x, flange_low));
    return solid;
}

// A foot below one corner of the sump, standing out by 32 mm on the given side (-1 or +1) of x = `middle`,
// the middle of the shell's side.
Solid Foot(double middle, double side) {
    const double outer_x = middle + side * 39;
    const double hole_x = middle + side * 24;
    const double root_x = middle - side * 13;
    const Region region{Rectangle({std::min(root_x, outer_x), -30}, {std::max(root_x, outer_x), 30}),
                        BoltHole(kM8, {hole_x, 16}), BoltHole(kM8, {hole_x, -16})};
    return Placed(Stack(kFootLow, {Slice::Straight(kFootHeight, region)}),
                  tarn::MATRIX{{1, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 0}});
}

double CapRadius(const ShaftLine& line) {
    return line.bearing.outer_radius + 11.5;
}

// Three bolts around a cap, about its axis. The first is on top.
std::vector<Point> CapBoltCentres(const ShaftLine& line) {
    const double radius = line.bearing.outer_radius + 6;
    std::vector<Point> centres;
    for (int i = 0; i < 3; ++i) {
        const double angle = kPi / 2 + 2 * kPi / 3 * i;
        centres.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    }
    return centres;
}

Solid EndWall(const ShaftLines& lines, End end) {
    Region inner{HousingOutline(kShellThickness)};
    for (const Point& centre : WallScrewCentres()) inner.push_back(BoltHole(kM6, centre));
    for (const ShaftLine& line : lines.All()) {
        inner.push_back(Circle({line.x, 0}, line.bearing.outer_radius + kSlip));
    }
    Region outer = inner;
    for (const ShaftLine& line : lines.All()) {
        const Point centre{line.x, 0};
        for (const Point& bolt : CapBoltCentres(line)) outer.push_back(Moved(BoltHole(kM5, bolt), centre));
    }
    const Slice floor = Slice::Straight(kBlindFloor, inner);
    const Slice drilled = Slice::Straight(kWallOutside - kWallInside - kBlindFloor, outer);
    return end == End::Front ? Stack(kWallInside, {floor, drilled}) : Stack(-kWallOutside, {drilled, floor});
}

// A cap about its axis, for the front. Its spigot holds the bearing in place, but for some play; with a seal
// it is open for the shaft.
Solid BearingCap(const ShaftLine& line, const SealSize* seal, double play) {
    const double spigot_end = kBearingInside + line.bearing.width + play;
    const Contour spigot_outside = Circle({}, line.bearing.outer_radius - kSlip);
    const Contour spigot_inside = Circle({}, line.bearing.outer_radius - 4);
    const Contour edge = Circle({}, CapRadius(line));
    Region bolt_holes;
    for (const Point& bolt : CapBoltCentres(line)) bolt_holes.push_back(BoltHole(kM5, bolt));
    const auto flange = [&](const Contour& outside, double bore_radius) {
        Region region = bolt_holes;
        region.push_back(outside);
        if (bore_radius > 0) region.push_back(Circle({}, bore_radius));
        return region;
    };
    const double shaft_bore = seal == nullptr ? 0 : seal->journal_radius + 2;
    const double pocket = seal == nullptr ? 0 : seal->outer_radius + kSlip;
    constexpr double kEdgeChamfer = 0.8;
    const Region rim = flange(edge, pocket);
    const Region chamfered_rim = flange(Scaled(edge, 0.98), pocket);
    return Stack(spigot_end, {Slice::Straight(kCapInside - spigot_end, {spigot_outside, spigot_inside}),
                              Slice::Straight(kCapFloor, flange(edge, shaft_bore)),
                              Slice::Straight(kCapThickness - kCapFloor - kEdgeChamfer, rim),
                              {kEdgeChamfer, rim, chamfered_rim}});
}

void AddCap(std::vector<Part>& parts,
            const ShaftLine& line,
            End end,
            const SealSize* seal,
            double first_length = kCapBoltLength,
            double play = kSlip) {
    const std::string name = "cap_" + line.name + "_" + EndName(end);
    parts.push_back(
        {name, Group::Housing, Placed(BearingCap(line, seal, play), PlacementAt(end, {line.x, 0}, 0))});
    constexpr double kSeat = kCapInside + kCapThickness + kSlip;
    int number = 0;
    for (const Point& bolt : CapBoltCentres(line)) {
        ++number;
        const double length = number == 1 ? first_length : kCapBoltLength;
        parts.push_back(
            {"bolt_" + name + "_" + std::to_string(number), Group::Fasteners,
             Placed(HexagonBolt(kM5, length), PlacementAt(end, {line.x + bolt.x, bolt.y}, kSeat))});
    }
}

void AddWallScrews(std::vector<Part>& parts, End end) {
    const Solid screw = HexagonBolt(kM6, 38);
    int number = 0;
    for (const Point& centre : WallScrewCentres()) {
        const tarn::MATRIX placement = PlacementAt(end, centre, kWallOutside + kSlip);
        parts.push_back({"screw_wall_" + EndName(end) + "_" + std::to_string(++number), Group::Fasteners,
                         Placed(screw, placement)});
    }
}

void AddSplitBolts(std::vector<Part>& parts) {
    constexpr double kNutHeight = 6.5;
    const double seat = kFlangeThickness + kSlip;
    int number = 0;
    for (const double x : FlangeCentres()) {
        for (const double z : {20.0, -20.0}) {
            const std::string suffix = "_split_" + std::to_string(++number);
            const auto upright = [&](double y) {
                return tarn::MATRIX{{1, 0, 0, x, 0, 0, 1, y, 0, -1, 0, z}};
            };
            parts.push_back({"bolt" + suffix, Group::Fasteners, Placed(HexagonBolt(kM8, 34), upright(seat))});
            parts.push_back({"nut" + suffix, Group::Fasteners,
                             Placed(HexagonNut(kM8, kNutHeight), upright(-seat - kNutHeight))});
        }
    }
}

}  // namespace

std::vector<Part> MakeHousing(const CriticalDimensions& dimensions) {
    const ShaftLines lines = LayOutShafts(dimensions);
    std::vector<Part> parts;
    Solid lower = Shell(false);
    const Outermost sides = OutermostMiddles();
    Append(lower, Foot(sides.left, -1));
    Append(lower, Foot(sides.right, 1));
    parts.push_back({"shell_lower", Group::Housing, std::move(lower)});
    parts.push_back({"shell_upper", Group::Housing, Shell(true)});
    for (const End end : {End::Front, End::Back}) {
        parts.push_back({"wall_" + EndName(end), Group::Housing, EndWall(lines, end)});
        AddWallScrews(parts, end);
    }
    AddCap(parts, lines.input, End::Front, &kInputSeal, dimensions.input_cap_bolt_length);
    AddCap(parts, lines.input, End::Back, nullptr);
    AddCap(parts, lines.intermediate, End::Front, nullptr);
    AddCap(parts, lines.intermediate, End::Back, nullptr);
    AddCap(parts, lines.output, End::Front, nullptr, kCapBoltLength, dimensions.output_cap_play);
    AddCap(parts, lines.output, End::Back, &kOutputSeal);
    AddSplitBolts(parts);
    return parts;
}

}  // namespace gearbox
