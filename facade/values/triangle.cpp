#include "ostrel/quarrix/triangle.h"

#include "ostrel/quarrix/exceptions.h"

namespace Ostrel::Quarrix::Collisions {

namespace {

double At(const Sequence<double>& vertex, std::size_t index) {
    if (vertex.IsNull()) throw NullReferenceException();
    if (index >= vertex.size()) throw IndexOutOfRangeException();
    return vertex[index];
}

}  // namespace

Triangle::Triangle(Sequence<double> v0, Sequence<double> v1, Sequence<double> v2)
    : v0x_(At(v0, 0)),
      v0y_(At(v0, 1)),
      v0z_(At(v0, 2)),
      v1x_(At(v1, 0)),
      v1y_(At(v1, 1)),
      v1z_(At(v1, 2)),
      v2x_(At(v2, 0)),
      v2y_(At(v2, 1)),
      v2z_(At(v2, 2)) {}

Triangle::Triangle(const tarn::TriangleData& triangle)
    : v0x_(triangle.v0x),
      v0y_(triangle.v0y),
      v0z_(triangle.v0z),
      v1x_(triangle.v1x),
      v1y_(triangle.v1y),
      v1z_(triangle.v1z),
      v2x_(triangle.v2x),
      v2y_(triangle.v2y),
      v2z_(triangle.v2z) {}

}  // namespace Ostrel::Quarrix::Collisions
