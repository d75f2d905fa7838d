#pragma once

#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/enumerations.h"
#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/proximity_configuration.h"
#include "ostrel/quarrix/proximity_result.h"
#include "ostrel/quarrix/text.h"

#include <iosfwd>
#include <memory>

namespace Ostrel::Quarrix::Collisions {

/// The clearance checker. Made by `CollisionFactory`; takes configurations that it makes. Errors and
/// thread-safety are those of `ICollisionDetector`; what is reported, and what is not, stands with
/// `tarn::IProximityDetector`.
class QUARRIX_API IProximityDetector : public IDisposable {
public:
    virtual std::shared_ptr<ProximityResult> Check(
        const std::shared_ptr<IProximityConfiguration>& configuration, CheckResultType checkType) = 0;
    /// Whether any pair intersects or comes within its clearance.
    virtual bool Check(const std::shared_ptr<IProximityConfiguration>& configuration) = 0;
    virtual void Dump(const std::shared_ptr<IProximityConfiguration>& configuration,
                      std::ostream* writer) = 0;
    virtual void Dump(const std::shared_ptr<IProximityConfiguration>& configuration, Text filePath) = 0;
    virtual void Store(const std::shared_ptr<IProximityConfiguration>& configuration, Text filePath) = 0;
    virtual std::shared_ptr<IProximityConfiguration> Retrieve(Text filePath) = 0;
};

}  // namespace Ostrel::Quarrix::Collisions
