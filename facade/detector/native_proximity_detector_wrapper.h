#pragma once

#include "ostrel/quarrix/proximity_detector.h"

#include "tarn/proximity_detector.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// The clearance checker over the engine's. What callers may expect stands with the interface. A
/// configuration that is not the internal one, null included, throws `NullReferenceException` where it is
/// used.
class NativeProximityDetectorWrapper final : public IProximityDetector {
public:
    NativeProximityDetectorWrapper();

    void Dispose() override { detector_.reset(); }

    std::shared_ptr<ProximityResult> Check(const std::shared_ptr<IProximityConfiguration>& configuration,
                                           CheckResultType checkType) override;
    bool Check(const std::shared_ptr<IProximityConfiguration>& configuration) override;
    void Dump(const std::shared_ptr<IProximityConfiguration>& configuration, std::ostream* writer) override;
    void Dump(const std::shared_ptr<IProximityConfiguration>& configuration, Text filePath) override;
    void Store(const std::shared_ptr<IProximityConfiguration>& configuration, Text filePath) override;
    std::shared_ptr<IProximityConfiguration> Retrieve(Text filePath) override;

private:
    tarn::IProximityDetector& Live() const;

    /// Null after disposal.
    std::unique_ptr<tarn::IProximityDetector> detector_;
};

}  // namespace Ostrel::Quarrix::Collisions
