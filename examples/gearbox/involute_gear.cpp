#include "gearbox/involute_gear.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gearbox {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kPressureAngle = 20 * kPi / 180;
// Play between two meshing gears along the pitch circle, in millimetres; each gear gives half. Wide for a
// real gearbox, so that each flank is clear of its neighbour by much more than the error of the flanks'
// chords.
constexpr double kBacklash = 0.3;
constexpr int kFlankChords = 8;
constexpr int kTipChords = 2;
constexpr int kRootChords = 3;

double Involute(double angle) {
    return std::tan(angle) - angle;
}

// Half the angle that a tooth subtends at the given radius. Inside the base circle the flank is radial.
double HalfToothAngle(const GearSize& size, double radius) {
    const double pitch_radius = size.PitchRadius();
    const double base_radius = pitch_radius * std::cos(kPressureAngle);
    const double pressure_angle = std::acos(std::min(1.0, base_radius / radius));
    const double half_thickness = (kPi * size.module - kBacklash) / 4;
    return half_thickness / pitch_radius + Involute(kPressureAngle) - Involute(pressure_angle);
}

}  // namespace

Contour GearOutline(const GearSize& size, double angle) {
    const double root = size.RootRadius();
    const double tip = size.TipRadius();
    const double pitch_angle = 2 * kPi / size.teeth;
    Contour contour;
    const auto add = [&](double radius, double at) {
        contour.push_back({radius * std::cos(at), radius * std::sin(at)});
    };
    for (int tooth = 0; tooth < size.teeth; ++tooth) {
        const double centre = angle + pitch_angle * tooth;
        for (int i = 0; i <= kFlankChords; ++i) {
            const double radius = root + (tip - root) * i / kFlankChords;
            add(radius, centre - HalfToothAngle(size, radius));
        }
        for (int i = 1; i < kTipChords; ++i)
            add(tip, centre + HalfToothAngle(size, tip) * (2.0 * i / kTipChords - 1));
        for (int i = kFlankChords; i >= 0; --i) {
            const double radius = root + (tip - root) * i / kFlankChords;
            add(radius, centre + HalfToothAngle(size, radius));
        }
        const double space = pitch_angle - 2 * HalfToothAngle(size, root);
        for (int i = 1; i < kRootChords; ++i) {
            add(root, centre + HalfToothAngle(size, root) + space * i / kRootChords);
        }
    }
    return contour;
}

Contour GearOutlineWithSpaceAt(const GearSize& size, double angle) {
    return GearOutline(size, angle + kPi / size.teeth);
}

}  // namespace gearbox
