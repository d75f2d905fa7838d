#include "gearbox/machine_elements.h"

#include "tarn/matrix.h"

#include <cmath>
#include <numbers>

namespace gearbox {

namespace {

constexpr double kPi = std::numbers::pi;
// Axial length of chamfers, and how much narrower they leave the outline.
constexpr double kChamfer = 1;
constexpr double kChamferScale = 0.92;
constexpr int kRingSegments = 72;
constexpr int kBallSegments = 18;
constexpr int kGrooveChords = 14;

Slice ChamferUp(const Contour& outline) {
    return {kChamfer, {outline}, {Scaled(outline, kChamferScale)}};
}

Slice ChamferDown(const Contour& outline) {
    return {kChamfer, {Scaled(outline, kChamferScale)}, {outline}};
}

double PitchRadius(const BearingSize& size) {
    return (size.bore_radius + size.outer_radius) / 2;
}

// The usual share of the room between bore and outside.
double BallRadius(const BearingSize& size) {
    return 0.294 * (size.outer_radius - size.bore_radius);
}

// The races keep clear of the pitch circle by this much.
double RaceOffset(const BearingSize& size) {
    return 0.45 * BallRadius(size);
}

// Points of the groove from one shoulder to the other, by angles at the ball's centre. `side` is +1 for the
// outer ring, whose profile comes down along the groove, and -1 for the inner ring, whose profile climbs it.
void AddGroove(Contour& profile, const BearingSize& size, double side) {
    const double groove_radius = BallRadius(size) + kSlip;
    const double half = std::acos(RaceOffset(size) / groove_radius);
    for (int i = 0; i <= kGrooveChords; ++i) {
        const double angle = -half + 2 * half * i / kGrooveChords;
        profile.push_back({PitchRadius(size) + side * groove_radius * std::cos(angle),
                           size.width / 2 - side * groove_radius * std::sin(angle)});
    }
}

}  // namespace

Solid HexagonBolt(const BoltSize& size, double length) {
    const Contour shank = Circle({}, size.radius);
    const Contour head = Hexagon(size.across_flats);
    return Stack(-length, {ChamferDown(shank), Slice::Straight(length - kChamfer, {shank}),
                           Slice::Straight(size.head_height - kChamfer, {head}), ChamferUp(head)});
}

Solid HexagonNut(const BoltSize& size, double height) {
    return Stack(
        0, {Slice::Straight(height, {Hexagon(size.across_flats), Circle({}, size.radius + 3 * kSlip)})});
}

Contour BoltHole(const BoltSize& size, const Point& centre) {
    return Circle(centre, size.radius + 4 * kSlip);
}

Solid BearingInnerRing(const BearingSize& size) {
    const double shoulder = PitchRadius(size) - RaceOffset(size);
    Contour profile{{size.bore_radius, size.width}, {size.bore_radius, 0}, {shoulder, 0}};
    AddGroove(profile, size, -1);
    profile.push_back({shoulder, size.width});
    return Revolve(profile, kRingSegments);
}

Solid BearingOuterRing(const BearingSize& size) {
    const double shoulder = PitchRadius(size) + RaceOffset(size);
    Contour profile{{size.outer_radius, 0}, {size.outer_radius, size.width}, {shoulder, size.width}};
    AddGroove(profile, size, 1);
    profile.push_back({shoulder, 0});
    return Revolve(profile, kRingSegments);
}

Solid BearingBalls(const BearingSize& size) {
    Contour half_circle;
    for (int i = 0; i <= kBallSegments / 2; ++i) {
        const double angle = kPi * (2.0 * i / kBallSegments - 0.5);
        const bool is_pole = i == 0 || i == kBallSegments / 2;
        half_circle.push_back(
            {is_pole ? 0 : BallRadius(size) * std::cos(angle), BallRadius(size) * std::sin(angle)});
    }
    const Solid ball = Revolve(half_circle, kBallSegments);
    Solid balls;
    for (int i = 0; i < size.balls; ++i) {
        const double angle = 2 * kPi * i / size.balls;
        const double x = PitchRadius(size) * std::cos(angle);
        const double y = PitchRadius(size) * std::sin(angle);
        Append(balls, Placed(ball, tarn::MATRIX{{1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, size.width / 2}}));
    }
    return balls;
}

Solid ShaftSeal(double lip_radius, double outer_radius, double width) {
    const double sleeve_radius = outer_radius - 2;
    const Contour profile{{lip_radius + 1.5, 0},        {outer_radius, 0},
                          {outer_radius, width},        {sleeve_radius, width},
                          {sleeve_radius, 0.4 * width}, {lip_radius + 1.2, 0.7 * width},
                          {lip_radius, 0.6 * width},    {lip_radius, 0.4 * width}};
    return Revolve(profile, kRingSegments);
}

Solid Sleeve(double inner_radius, double outer_radius, double from, double to) {
    return Stack(from, {Slice::Straight(to - from, {Circle({}, outer_radius), Circle({}, inner_radius)})});
}

Solid ParallelKey(const KeySize& size, double from, double to) {
    const double low = size.floor + kSlip;
    const Contour section = Rectangle({-size.width / 2, low}, {size.width / 2, low + size.height});
    return Stack(from, {Slice::Straight(to - from, {section})});
}

Solid SteppedShaft(double start, const std::vector<ShaftStep>& steps) {
    std::vector<Slice> slices{ChamferDown(steps.front().outline)};
    double from = start + kChamfer;
    for (const ShaftStep& step : steps) {
        const bool is_last = &step == &steps.back();
        const double to = is_last ? step.end - kChamfer : step.end;
        slices.push_back(Slice::Straight(to - from, {step.outline}));
        from = to;
    }
    slices.push_back(ChamferUp(steps.back().outline));
    return Stack(start, slices);
}

}  // namespace gearbox
