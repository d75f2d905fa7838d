#pragma once

#include "tarn/proximity_detector.h"

namespace tarn::details {

/// The library's only clearance checker. What callers may expect stands with the interface.
class ProximityDetector final : public IProximityDetector {
public:
    bool Check(IProximityConfiguration& configuration) override;
    ProximityResult& Check(ProximityResult& result,
                           IProximityConfiguration& configuration,
                           CheckPolicy policy) override;
    void Dump(IProximityConfiguration& configuration, DumpType type, std::ostream& stream) override;
};

}  // namespace tarn::details
