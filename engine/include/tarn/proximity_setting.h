#pragma once

namespace tarn {

/// What a proximity configuration is told of couples.
struct ProximitySetting {
    bool enable = false;     ///< whether the couple is measured
    double clearance = 0.0;  ///< the distance within which it is reported, in the caller's length unit
};

}  // namespace tarn
