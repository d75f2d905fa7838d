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
    /// Replies with what the check type asks for. Throws the plain `Exception` for a value that is none.
    virtual std::shared_ptr<ProximityResult> Check(
        const std::shared_ptr<IProximityConfiguration>& configuration, CheckResultType checkType) = 0;
    /// Whether any pair intersects or comes within its clearance.
    virtual bool Check(const std::shared_ptr<IProximityConfiguration>& configuration) = 0;
    /// Writes all meshes, in world coordinates, as text STL, in one piece. The writer is not owned.
    virtual void Dump(const std::shared_ptr<IProximityConfiguration>& configuration,
                      std::ostream* writer) = 0;
    /// The same to a file, which is replaced.
    virtual void Dump(const std::shared_ptr<IProximityConfiguration>& configuration, Text filePath) = 0;
    /// Writes a scene file. Placements are not part of it.
    virtual void Store(const std::shared_ptr<IProximityConfiguration>& configuration, Text filePath) = 0;
    /// Reads a scene file: new elements, each with an owner of its own, and their pairs with their settings.
    virtual std::shared_ptr<IProximityConfiguration> Retrieve(Text filePath) = 0;
};

}  // namespace Ostrel::Quarrix::Collisions
