#pragma once

#include "ostrel/quarrix/collision_detector.h"

#include "tarn/collision_detector.h"

#include <memory>

namespace Ostrel::Quarrix::Collisions {

class NativeCollisionConfigurationWrapper;

/// The interference checker over the engine's. What callers may expect stands with the interface.
class NativeCollisionDetectorWrapper final : public ICollisionDetector {
public:
    NativeCollisionDetectorWrapper();

    void Dispose() override { detector_.reset(); }

    std::shared_ptr<CollisionResult> Check(const std::shared_ptr<ICollisionConfiguration>& configuration,
                                           CheckResultType checkType) override;
    bool Check(const std::shared_ptr<ICollisionConfiguration>& configuration) override;
    void Dump(const std::shared_ptr<ICollisionConfiguration>& configuration, std::ostream* writer) override;
    void Dump(const std::shared_ptr<ICollisionConfiguration>& configuration, Text filePath) override;
    void Store(const std::shared_ptr<ICollisionConfiguration>& configuration, Text filePath) override;
    std::shared_ptr<ICollisionConfiguration> Retrieve(Text filePath) override;
    /// Works after disposal, too.
    std::shared_ptr<ICollisionConfiguration> CreateNewConfiguration() override;

    /// Retrieves the configuration as the internal class.
    std::shared_ptr<NativeCollisionConfigurationWrapper> RetrieveNative(Text filePath);

private:
    tarn::ICollisionDetector& Live() const;

    /// Null after disposal.
    std::unique_ptr<tarn::ICollisionDetector> detector_;
};

/// The internal configuration behind a configuration of this library. Throws `NullReferenceException` for
/// null and for a class that is not of this library.
NativeCollisionConfigurationWrapper& NativeOf(const std::shared_ptr<ICollisionConfiguration>& configuration);

}  // namespace Ostrel::Quarrix::Collisions
