#pragma once

#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/object.h"
#include "ostrel/quarrix/sequence.h"

#include "tarn/triangle_data.h"

#include <array>

namespace Ostrel::Quarrix::Collisions {

/// A triangle in model units. Never changes.
class QUARRIX_API Triangle final : public Object {
public:
    /// The first three numbers of each sequence are a vertex; more are ignored. Throws
    /// `NullReferenceException` for null, `IndexOutOfRangeException` for fewer.
    Triangle(Sequence<double> v0, Sequence<double> v1, Sequence<double> v2);
    /// From the engine's.
    explicit Triangle(const tarn::TriangleData& triangle);

    ///@{
    /// A vertex as x, y, z: a copy.
    std::array<double, 3> get_V0() const { return {v0x_, v0y_, v0z_}; }
    std::array<double, 3> get_V1() const { return {v1x_, v1y_, v1z_}; }
    std::array<double, 3> get_V2() const { return {v2x_, v2y_, v2z_}; }
    ///@}

private:
    double v0x_, v0y_, v0z_;
    double v1x_, v1y_, v1z_;
    double v2x_, v2y_, v2z_;
};

}  // namespace Ostrel::Quarrix::Collisions
