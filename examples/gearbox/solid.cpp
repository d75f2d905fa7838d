#include "gearbox/solid.h"

#include "gearbox/triangulation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace gearbox {

namespace {

using Vertex = std::array<double, 3>;

void AddTriangle(Solid& solid, const Vertex& a, const Vertex& b, const Vertex& c) {
    solid.push_back({a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2]});
}

Vertex At(const Point& point, double z) {
    return {point.x, point.y, z};
}

// How many other contours surround each contour.
std::vector<std::size_t> NestingDepths(const std::vector<Contour>& contours) {
    std::vector<std::size_t> depths(contours.size(), 0);
    for (std::size_t inner = 0; inner < contours.size(); ++inner) {
        for (std::size_t outer = 0; outer < contours.size(); ++outer) {
            if (inner != outer && Contains(contours[outer], contours[inner].front())) ++depths[inner];
        }
    }
    return depths;
}

// The region's contours with the material always on their left: holes run clockwise.
std::vector<Contour> WithMaterialLeft(const Region& region) {
    const std::vector<std::size_t> depths = NestingDepths(region);
    std::vector<Contour> result;
    for (std::size_t i = 0; i < region.size(); ++i) {
        result.push_back(depths[i] % 2 == 0 ? region[i] : Reversed(region[i]));
    }
    return result;
}

void AddSides(Solid& solid, const Slice& slice, double z) {
    const std::vector<Contour> bottoms = WithMaterialLeft(slice.bottom);
    const std::vector<Contour> tops = WithMaterialLeft(slice.top);
    for (std::size_t ring = 0; ring < bottoms.size(); ++ring) {
        const Contour& low = bottoms[ring];
        const Contour& high = tops[ring];
        for (std::size_t i = 0; i < low.size(); ++i) {
            const std::size_t next = (i + 1) % low.size();
            const Vertex a = At(low[i], z);
            const Vertex c = At(high[next], z + slice.height);
            AddTriangle(solid, a, At(low[next], z), c);
            AddTriangle(solid, a, c, At(high[i], z + slice.height));
        }
    }
}

// The plane faces where the material ends below (`below` without `above`, facing up) or begins above (facing
// down). The contours of both sides that do not cancel bound exactly these areas under the even-odd rule, and
// the sense of the outermost contour of an area tells which way it faces.
void AddStep(Solid& solid, double z, const Region& below, const Region& above) {
    std::vector<Contour> contours = WithMaterialLeft(below);
    for (const Contour& contour : WithMaterialLeft(above)) {
        const auto same = std::find(contours.begin(), contours.end(), contour);
        if (same != contours.end()) {
            contours.erase(same);
        } else {
            contours.push_back(Reversed(contour));
        }
    }
    const std::vector<std::size_t> depths = NestingDepths(contours);
    for (std::size_t outer = 0; outer < contours.size(); ++outer) {
        if (depths[outer] % 2 != 0) continue;
        std::vector<Contour> holes;
        for (std::size_t inner = 0; inner < contours.size(); ++inner) {
            if (depths[inner] != depths[outer] + 1) continue;
            if (Contains(contours[outer], contours[inner].front())) holes.push_back(contours[inner]);
        }
        const bool faces_up = SignedArea(contours[outer]) > 0;
        const Contour outline = faces_up ? contours[outer] : Reversed(contours[outer]);
        for (const auto& [a, b, c] : Triangulate(outline, holes)) {
            AddTriangle(solid, At(a, z), At(faces_up ? b : c, z), At(faces_up ? c : b, z));
        }
    }
}

void AddHalved(Solid& solid, const std::array<Vertex, 3>& corners, double limit) {
    std::size_t longest = 0;
    double length_squared = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const Vertex& from = corners[i];
        const Vertex& to = corners[(i + 1) % 3];
        double sum = 0;
        for (std::size_t axis = 0; axis < 3; ++axis) sum += (to[axis] - from[axis]) * (to[axis] - from[axis]);
        if (sum > length_squared) {
            longest = i;
            length_squared = sum;
        }
    }
    if (length_squared <= limit * limit) return AddTriangle(solid, corners[0], corners[1], corners[2]);
    const Vertex& from = corners[longest];
    const Vertex& to = corners[(longest + 1) % 3];
    const Vertex& opposite = corners[(longest + 2) % 3];
    // The sum commutes, so the neighbour, which runs along the edge the other way, finds the same bits.
    const Vertex middle{(from[0] + to[0]) / 2, (from[1] + to[1]) / 2, (from[2] + to[2]) / 2};
    AddHalved(solid, {from, middle, opposite}, limit);
    AddHalved(solid, {middle, to, opposite}, limit);
}

}  // namespace

Solid Stack(double z, const std::vector<Slice>& slices) {
    Solid solid;
    Region below;
    for (const Slice& slice : slices) {
        AddStep(solid, z, below, slice.bottom);
        AddSides(solid, slice, z);
        below = slice.top;
        z += slice.height;
    }
    AddStep(solid, z, below, {});
    return solid;
}

Solid Revolve(const Contour& profile, int segments) {
    const auto turned = [segments](const Point& point, int step) {
        const double angle = 2 * std::numbers::pi * (step % segments) / segments;
        if (point.x == 0) return Vertex{0, 0, point.y};
        return Vertex{point.x * std::cos(angle), point.x * std::sin(angle), point.y};
    };
    Solid solid;
    for (std::size_t i = 0; i < profile.size(); ++i) {
        const Point& from = profile[i];
        const Point& to = profile[(i + 1) % profile.size()];
        for (int step = 0; step < segments; ++step) {
            const Vertex a = turned(from, step);
            const Vertex c = turned(to, step + 1);
            if (from.x != 0) AddTriangle(solid, a, turned(from, step + 1), c);
            if (to.x != 0) AddTriangle(solid, a, c, turned(to, step));
        }
    }
    return solid;
}

Solid Placed(Solid solid, const tarn::MATRIX& m) {
    const auto place = [&m](double& x, double& y, double& z) {
        const Vertex p{x, y, z};
        x = m[0] * p[0] + m[1] * p[1] + m[2] * p[2] + m[3];
        y = m[4] * p[0] + m[5] * p[1] + m[6] * p[2] + m[7];
        z = m[8] * p[0] + m[9] * p[1] + m[10] * p[2] + m[11];
    };
    for (tarn::TriangleData& t : solid) {
        place(t.v0x, t.v0y, t.v0z);
        place(t.v1x, t.v1y, t.v1z);
        place(t.v2x, t.v2y, t.v2z);
    }
    return solid;
}

void Append(Solid& solid, const Solid& other) {
    solid.insert(solid.end(), other.begin(), other.end());
}

Solid WithShortEdges(const Solid& solid, double limit) {
    Solid result;
    for (const tarn::TriangleData& t : solid) {
        AddHalved(result, {{{t.v0x, t.v0y, t.v0z}, {t.v1x, t.v1y, t.v1z}, {t.v2x, t.v2y, t.v2z}}}, limit);
    }
    return result;
}

}  // namespace gearbox
