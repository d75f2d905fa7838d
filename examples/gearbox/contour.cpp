#include "gearbox/contour.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace gearbox {

namespace {

constexpr double kPi = std::numbers::pi;
// Chord length of circles, in millimetres.
constexpr double kChord = 1.6;
// Fewest chords of a circle: small holes stay round.
constexpr int kFewestChords = 32;

int ChordCount(double radius) {
    const int quarter = static_cast<int>(std::ceil(2 * kPi * radius / kChord / 4));
    return std::max(kFewestChords, 4 * quarter);
}

}  // namespace

double Turn(const Point& a, const Point& b, const Point& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

double SignedArea(const Contour& contour) {
    double twice = 0;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        const Point& from = contour[i];
        const Point& to = contour[(i + 1) % contour.size()];
        twice += from.x * to.y - to.x * from.y;
    }
    return twice / 2;
}

bool Contains(const Contour& contour, const Point& point) {
    bool inside = false;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        const Point& from = contour[i];
        const Point& to = contour[(i + 1) % contour.size()];
        if ((from.y > point.y) == (to.y > point.y)) continue;
        const double x = from.x + (point.y - from.y) / (to.y - from.y) * (to.x - from.x);
        if (point.x < x) inside = !inside;
    }
    return inside;
}

Contour Circle(const Point& centre, double radius) {
    const int count = ChordCount(radius);
    Contour contour;
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * kPi * i / count;
        contour.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
    }
    return contour;
}

Contour Hexagon(double across_flats) {
    const double corner = across_flats / std::sqrt(3.0);
    Contour contour;
    for (int i = 0; i < 6; ++i) {
        contour.push_back({corner * std::cos(kPi / 3 * i), corner * std::sin(kPi / 3 * i)});
    }
    return contour;
}

Contour Rectangle(const Point& low, const Point& high) {
    return {low, {high.x, low.y}, high, {low.x, high.y}};
}

Contour KeyedCircle(double radius, const Keyway& keyway) {
    const double half = keyway.width / 2;
    const double gap = std::asin(half / radius);
    const int count = ChordCount(radius);
    Contour contour;
    for (int i = 0; i <= count; ++i) {
        const double angle = kPi / 2 + gap + (2 * kPi - 2 * gap) * i / count;
        contour.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    }
    contour.push_back({half, keyway.floor});
    contour.push_back({-half, keyway.floor});
    return contour;
}

// The monotone chain: A. M. Andrew, "Another Efficient Algorithm for Convex Hulls in Two Dimensions", 1979.
Contour ConvexHull(std::vector<Point> points) {
    std::sort(points.begin(), points.end(),
              [](const Point& a, const Point& b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
    Contour hull;
    const auto extend = [&hull](std::size_t fixed, const Point& point) {
        while (hull.size() > fixed + 1 && Turn(hull[hull.size() - 2], hull.back(), point) <= 0) {
            hull.pop_back();
        }
        hull.push_back(point);
    };
    for (const Point& point : points) extend(0, point);
    const std::size_t lower = hull.size() - 1;
    for (auto point = points.rbegin() + 1; point != points.rend(); ++point) extend(lower, *point);
    hull.pop_back();
    return hull;
}

Contour Moved(Contour contour, const Point& by) {
    for (Point& point : contour) point = {point.x + by.x, point.y + by.y};
    return contour;
}

Contour Scaled(Contour contour, double factor) {
    for (Point& point : contour) point = {point.x * factor, point.y * factor};
    return contour;
}

Contour Reversed(Contour contour) {
    std::reverse(contour.begin(), contour.end());
    return contour;
}

}  // namespace gearbox
