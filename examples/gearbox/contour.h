#pragma once

#include <vector>

/// \file
/// Plane outlines from which the sample's solids are made. Lengths are millimetres.

namespace gearbox {

struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

/// A closed outline that does not cross itself, counter-clockwise, the first point not repeated at the end.
using Contour = std::vector<Point>;

/// A plane area under the even-odd rule: a contour inside another is a hole, one inside a hole is an island.
/// The contours of one region neither cross nor touch.
using Region = std::vector<Contour>;

/// Twice the signed area of the triangle: positive when the three points turn counter-clockwise.
double Turn(const Point& a, const Point& b, const Point& c);
/// Positive for a counter-clockwise contour.
double SignedArea(const Contour& contour);
/// For points well off the contour.
bool Contains(const Contour& contour, const Point& point);

/// As many points as keep the chords near 1.6 mm and the polygon within a twentieth of a millimetre of the
/// circle, always on or inside it.
Contour Circle(const Point& centre, double radius);
/// A regular hexagon about the origin by its distance across flats, as wrenches are named.
Contour Hexagon(double across_flats);
/// A rectangle by two opposite corners.
Contour Rectangle(const Point& low, const Point& high);

/// A keyway along +y: how wide it is, and how far from the axis its floor lies.
struct Keyway {
    double width = 0;
    double floor = 0;
};

/// A circle about the origin with a keyway: cut into a shaft when the floor lies inside the circle, into the
/// bore of a hub when it lies outside.
Contour KeyedCircle(double radius, const Keyway& keyway);

/// The smallest convex outline around all points.
Contour ConvexHull(std::vector<Point> points);
Contour Moved(Contour contour, const Point& by);
/// About the origin.
Contour Scaled(Contour contour, double factor);
Contour Reversed(Contour contour);

}  // namespace gearbox
