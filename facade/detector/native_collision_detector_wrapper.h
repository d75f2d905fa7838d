#pragma once

#include "configuration/native_collision_configuration_wrapper.h"
#include "detector/native_detector_wrapper.h"
#include "ostrel/quarrix/collision_detector.h"

#include "tarn/collision_detector.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// The internal configuration behind a configuration of this library. Throws `NullReferenceException` for
/// null and for a class that is not of this library, `ObjectDisposedException` for a disposed
/// `CollisionConfiguration`.
std::shared_ptr<const NativeCollisionConfigurationWrapper> NativeOf(
    const std::shared_ptr<ICollisionConfiguration>& configuration);

/// The interference checker over the engine's. What callers may expect stands with the interface.
class NativeCollisionDetectorWrapper final
    : public NativeDetectorWrapper<ICollisionDetector, ICollisionConfiguration, tarn::ICollisionDetector> {
public:
    NativeCollisionDetectorWrapper();

    using NativeDetectorWrapper::Check;
    std::shared_ptr<CollisionResult> Check(const std::shared_ptr<ICollisionConfiguration>& configuration,
                                           CheckResultType checkType) override;
    std::shared_ptr<ICollisionConfiguration> Retrieve(Text filePath) override;
    /// Works after disposal, too.
    std::shared_ptr<ICollisionConfiguration> CreateNewConfiguration() override;

    /// Retrieves the configuration as the internal class.
    std::shared_ptr<NativeCollisionConfigurationWrapper> RetrieveNative(Text filePath);
};

}  // namespace Ostrel::Quarrix::Collisions
