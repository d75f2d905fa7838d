#pragma once

#include "configuration/native_proximity_configuration_wrapper.h"
#include "detector/native_detector_wrapper.h"
#include "ostrel/quarrix/proximity_detector.h"

#include "tarn/proximity_detector.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// The configuration as the internal class. Throws `NullReferenceException` for null and for another class.
std::shared_ptr<const NativeProximityConfigurationWrapper> NativeOf(
    const std::shared_ptr<IProximityConfiguration>& configuration);

/// The clearance checker over the engine's. What callers may expect stands with the interface.
class NativeProximityDetectorWrapper final
    : public NativeDetectorWrapper<IProximityDetector, IProximityConfiguration, tarn::IProximityDetector> {
public:
    NativeProximityDetectorWrapper();

    using NativeDetectorWrapper::Check;
    std::shared_ptr<ProximityResult> Check(const std::shared_ptr<IProximityConfiguration>& configuration,
                                           CheckResultType checkType) override;
    std::shared_ptr<IProximityConfiguration> Retrieve(Text filePath) override;
};

}  // namespace Ostrel::Quarrix::Collisions
