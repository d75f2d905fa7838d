#include "support/placements.h"

#include <cmath>

namespace tarn::test {

MATRIX Translation(double x, double y, double z) {
    return {1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, z};
}

MATRIX RandomRigid(std::mt19937_64& random, double reach) {
    // A random unit quaternion is a uniformly random rotation (K. Shoemake, "Uniform Random Rotations",
    // 1992).
    std::normal_distribution<double> normal;
    double w = normal(random);
    double x = normal(random);
    double y = normal(random);
    double z = normal(random);
    const double length = std::sqrt(w * w + x * x + y * y + z * z);
    w /= length;
    x /= length;
    y /= length;
    z /= length;
    std::uniform_real_distribution<double> translation(-reach, reach);
    const double tx = translation(random);
    const double ty = translation(random);
    const double tz = translation(random);
    return {1 - 2 * (y * y + z * z), 2 * (x * y - w * z),     2 * (x * z + w * y),     tx,
            2 * (x * y + w * z),     1 - 2 * (x * x + z * z), 2 * (y * z - w * x),     ty,
            2 * (x * z - w * y),     2 * (y * z + w * x),     1 - 2 * (x * x + y * y), tz};
}

MATRIX RandomPlacement(std::mt19937_64& random, double reach) {
    MATRIX m = RandomRigid(random, reach);
    std::uniform_real_distribution<double> factor(0.3, 3.0);
    const auto scale_column = [&m](std::size_t column, double by) {
        for (std::size_t row = 0; row < 3; ++row) m[4 * row + column] *= by;
    };
    switch (std::uniform_int_distribution<int>(0, 6)(random)) {
        case 1:
            return {0, -1, 0, m[3], 1, 0, 0, m[7], 0, 0, 1, m[11]};
        case 2:
            scale_column(0, -1.0);
            break;
        case 3:
            for (std::size_t column = 0; column < 3; ++column) scale_column(column, factor(random));
            break;
        case 4:
            for (std::size_t row = 0; row < 3; ++row) m[4 * row] += factor(random) * m[4 * row + 1];
            break;
        case 5:
            scale_column(2, 1e-9);
            break;
        case 6:
            for (std::size_t row = 0; row < 3; ++row) m[4 * row + 3] += 1e7;
            break;
        default:
            break;
    }
    return m;
}

}  // namespace tarn::test
