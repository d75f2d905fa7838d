#pragma once

#include "detect/filters.h"

#include "tarn/proximity_detector.h"

namespace tarn::details {

/// The library's only clearance checker. What callers may expect stands with the interface.
class ProximityDetector final : public IProximityDetector {
public:
    explicit ProximityDetector(Filters filters = Filters::On) : filters_(filters) {}

    bool Check(IProximityConfiguration& configuration) override;
    ProximityResult& Check(ProximityResult& result,
                           IProximityConfiguration& configuration,
                           CheckPolicy policy) override;
    void Dump(IProximityConfiguration& configuration, DumpType type, std::ostream& stream) override;

private:
    Filters filters_;
};

}  // namespace tarn::details
