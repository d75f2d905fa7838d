#include "gearbox/triangulation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <stdexcept>
#include <utility>

namespace gearbox {

namespace {

using Corners = std::array<std::size_t, 3>;
using Edge = std::pair<std::size_t, std::size_t>;

// Works on indices into one list of points, because a bridge to a hole visits its two ends twice.
class Triangulator final {
public:
    Triangulator(const Contour& outline, const std::vector<Contour>& holes) {
        polygon_ = AddContour(outline);
        std::vector<std::vector<std::size_t>> rings;
        rings.reserve(holes.size());
        for (const Contour& hole : holes) {
            rings.push_back(AddContour(SignedArea(hole) < 0 ? hole : Reversed(hole)));
        }
        // Rightmost first: what a hole can see to its right is part of the polygon already.
        std::sort(rings.begin(), rings.end(), [this](const auto& first, const auto& second) {
            return points_[first[Rightmost(first)]].x > points_[second[Rightmost(second)]].x;
        });
        for (const auto& ring : rings) JoinHole(ring);
    }

    std::vector<std::array<Point, 3>> Run() {
        ClipEars();
        ImproveDiagonals();
        std::vector<std::array<Point, 3>> result;
        result.reserve(triangles_.size());
        for (const Corners& t : triangles_) result.push_back({points_[t[0]], points_[t[1]], points_[t[2]]});
        return result;
    }

private:
    std::vector<std::size_t> AddContour(const Contour& contour) {
        std::vector<std::size_t> ring;
        for (const Point& point : contour) {
            ring.push_back(points_.size());
            points_.push_back(point);
        }
        for (std::size_t i = 0; i < ring.size(); ++i)
            edges_.push_back({ring[i], ring[(i + 1) % ring.size()]});
        return ring;
    }

    std::size_t Rightmost(const std::vector<std::size_t>& ring) const {
        const auto at = std::max_element(ring.begin(), ring.end(), [this](std::size_t a, std::size_t b) {
            return points_[a].x < points_[b].x;
        });
        return static_cast<std::size_t>(at - ring.begin());
    }

    double Turn(std::size_t a, std::size_t b, std::size_t c) const {
        return gearbox::Turn(points_[a], points_[b], points_[c]);
    }

    // Two segments without a common end; touching counts.
    bool Meet(const Edge& first, const Edge& second) const {
        const auto [a, b] = first;
        const auto [c, d] = second;
        if (a == c || a == d || b == c || b == d) return false;
        return Turn(a, b, c) * Turn(a, b, d) <= 0 && Turn(c, d, a) * Turn(c, d, b) <= 0;
    }

    // Whether the polygon's corner `at` opens towards the point; tells the visits of a doubled point apart.
    bool OpensTowards(std::size_t at, std::size_t target) const {
        const std::size_t size = polygon_.size();
        const std::size_t here = polygon_[at];
        const std::size_t before = polygon_[(at + size - 1) % size];
        const std::size_t after = polygon_[(at + 1) % size];
        const bool left_of_entry = Turn(before, here, target) > 0;
        const bool left_of_exit = Turn(here, after, target) > 0;
        return Turn(before, here, after) > 0 ? left_of_entry && left_of_exit : left_of_entry || left_of_exit;
    }

    // Splices the hole into the polygon along a bridge to the nearest corner that sees it.
    void JoinHole(const std::vector<std::size_t>& ring) {
        const std::size_t start = Rightmost(ring);
        const std::size_t from = ring[start];
        std::vector<std::pair<double, std::size_t>> candidates;
        for (std::size_t at = 0; at < polygon_.size(); ++at) {
            const Point& to = points_[polygon_[at]];
            candidates.push_back({std::hypot(to.x - points_[from].x, to.y - points_[from].y), at});
        }
        std::sort(candidates.begin(), candidates.end());
        for (const auto& [distance, at] : candidates) {
            const Edge bridge{from, polygon_[at]};
            const auto meets = [&](const Edge& edge) { return Meet(bridge, edge); };
            if (!OpensTowards(at, from) || std::any_of(edges_.begin(), edges_.end(), meets)) continue;
            std::vector<std::size_t> detour(ring.begin() + static_cast<std::ptrdiff_t>(start), ring.end());
            detour.insert(detour.end(), ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(start) + 1);
            detour.push_back(polygon_[at]);
            polygon_.insert(polygon_.begin() + static_cast<std::ptrdiff_t>(at) + 1, detour.begin(),
                            detour.end());
            edges_.push_back(bridge);
            return;
        }
        throw std::logic_error("A hole lies outside its outline.");
    }

    bool IsEar(std::size_t a, std::size_t b, std::size_t c) const {
        if (Turn(a, b, c) <= 0) return false;
        return std::none_of(polygon_.begin(), polygon_.end(), [&](std::size_t p) {
            if (p == a || p == b || p == c) return false;
            return Turn(a, b, p) >= 0 && Turn(b, c, p) >= 0 && Turn(c, a, p) >= 0;
        });
    }

    // G. H. Meisters, "Polygons Have Ears", 1975: every polygon without crossings has an ear to cut off.
    void ClipEars() {
        std::size_t at = 0;
        std::size_t refused = 0;
        while (polygon_.size() > 3) {
            const std::size_t size = polygon_.size();
            at %= size;
            const std::size_t next = (at + 1) % size;
            const Corners ear{polygon_[at], polygon_[next], polygon_[(at + 2) % size]};
            if (IsEar(ear[0], ear[1], ear[2])) {
                triangles_.push_back(ear);
                polygon_.erase(polygon_.begin() + static_cast<std::ptrdiff_t>(next));
                refused = 0;
            } else if (++refused > size) {
                throw std::logic_error("The contours of a region cross or touch.");
            }
            // Stepping on after each ear spreads the triangles instead of fanning them out from one corner.
            ++at;
        }
        triangles_.push_back({polygon_[0], polygon_[1], polygon_[2]});
    }

    // Whether d lies inside the circle through the counter-clockwise a, b, c, by clearly more than rounding:
    // points of one circle would exchange diagonals for ever.
    bool InCircle(std::size_t a, std::size_t b, std::size_t c, std::size_t d) const {
        const auto row = [&](std::size_t p) {
            const double x = points_[p].x - points_[d].x;
            const double y = points_[p].y - points_[d].y;
            return std::array<double, 3>{x, y, x * x + y * y};
        };
        const auto [ax, ay, aa] = row(a);
        const auto [bx, by, bb] = row(b);
        const auto [cx, cy, cc] = row(c);
        const double determinant =
            aa * (bx * cy - by * cx) + bb * (cx * ay - cy * ax) + cc * (ax * by - ay * bx);
        const double scale = aa + bb + cc;
        return determinant > 1e-9 * scale * scale;
    }

    static std::size_t Opposite(const Corners& triangle, const Edge& edge) {
        for (const std::size_t p : triangle) {
            if (p != edge.first && p != edge.second) return p;
        }
        throw std::logic_error("A triangle without area.");
    }

    // C. L. Lawson, "Software for C1 Surface Interpolation", 1977: exchange the diagonal of two neighbours
    // while the far corner of one lies inside the circle of the other.
    void ImproveDiagonals() {
        std::map<Edge, std::size_t> owner;
        const auto enter = [&](std::size_t index, const Corners& t) {
            triangles_[index] = t;
            for (std::size_t i = 0; i < 3; ++i) owner[{t[i], t[(i + 1) % 3]}] = index;
        };
        for (std::size_t i = 0; i < triangles_.size(); ++i) enter(i, triangles_[i]);
        std::vector<Edge> pending;
        pending.reserve(owner.size());
        for (const auto& [edge, index] : owner) pending.push_back(edge);
        while (!pending.empty()) {
            const auto [a, b] = pending.back();
            pending.pop_back();
            const auto here = owner.find({a, b});
            const auto there = owner.find({b, a});
            if (here == owner.end() || there == owner.end()) continue;
            const std::size_t first = here->second;
            const std::size_t second = there->second;
            const std::size_t c = Opposite(triangles_[first], {a, b});
            const std::size_t d = Opposite(triangles_[second], {a, b});
            if (Turn(a, d, c) <= 0 || Turn(d, b, c) <= 0 || !InCircle(a, b, c, d)) continue;
            owner.erase(here);
            owner.erase(there);
            enter(first, {a, d, c});
            enter(second, {d, b, c});
            pending.insert(pending.end(), {{a, d}, {d, b}, {b, c}, {c, a}});
        }
    }

    std::vector<Point> points_;
    std::vector<Edge> edges_;  // of all contours, and the bridges laid so far
    std::vector<std::size_t> polygon_;
    std::vector<Corners> triangles_;
};

}  // namespace

std::vector<std::array<Point, 3>> Triangulate(const Contour& outline, const std::vector<Contour>& holes) {
    return Triangulator(outline, holes).Run();
}

}  // namespace gearbox
