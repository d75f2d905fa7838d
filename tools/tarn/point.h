#pragma once

namespace tarn::program {

/// A point in world coordinates, in millimetres.
struct Point {
    double x, y, z;
};

}  // namespace tarn::program
