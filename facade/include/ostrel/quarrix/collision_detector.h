#pragma once

#include "ostrel/quarrix/collision_configuration.h"
#include "ostrel/quarrix/collision_result.h"
#include "ostrel/quarrix/disposable.h"
#include "ostrel/quarrix/enumerations.h"
#include "ostrel/quarrix/export.h"
#include "ostrel/quarrix/text.h"

#include <iosfwd>
#include <memory>

namespace Ostrel::Quarrix::Collisions {

class NativeCollisionDetectorWrapper;

/// The interference checker.
///
/// Errors: `ObjectDisposedException` after disposal. Paths and writers are tested before configurations:
/// `ArgumentNullException` ("filePath", "writer", "configuration"), `ArgumentException` ("filePath") for a
/// path that is empty or blank. Failures of the engine come out as they are: `tarn::Exception` and its kin.
///
/// Thread-safety: a check takes no lock. Checks may run beside each other; while one runs, nobody may change
/// its configuration, or move or reshape the elements in it.
class QUARRIX_API ICollisionDetector : public IDisposable {
public:
    /// Replies with what the check type asks for. Throws the plain `Exception` for a value that is none.
    virtual std::shared_ptr<CollisionResult> Check(
        const std::shared_ptr<ICollisionConfiguration>& configuration, CheckResultType checkType) = 0;
    /// Whether anything collides.
    virtual bool Check(const std::shared_ptr<ICollisionConfiguration>& configuration) = 0;
    /// Writes all meshes, in world coordinates, as text STL, in one piece. The writer is not owned.
    virtual void Dump(const std::shared_ptr<ICollisionConfiguration>& configuration,
                      std::ostream* writer) = 0;
    /// The same to a file, which is replaced.
    virtual void Dump(const std::shared_ptr<ICollisionConfiguration>& configuration, Text filePath) = 0;
    /// Writes a scene file. Placements are not part of it.
    virtual void Store(const std::shared_ptr<ICollisionConfiguration>& configuration, Text filePath) = 0;
    /// Reads a scene file: new elements, each with an owner of its own, and their pairs.
    virtual std::shared_ptr<ICollisionConfiguration> Retrieve(Text filePath) = 0;
    /// A configuration without elements. Works after disposal, too.
    virtual std::shared_ptr<ICollisionConfiguration> CreateNewConfiguration() = 0;
};

/// What makes configurations that callers construct.
class QUARRIX_API IConfigurationFactory : public virtual Object {
public:
    /// A configuration without elements.
    virtual std::shared_ptr<CollisionConfiguration> CreateNewConfiguration() = 0;
};

/// The detector that callers construct. It takes `CollisionConfiguration` objects, and those that
/// `CollisionFactory` makes; a null configuration, or one of another class, throws `NullReferenceException`
/// where it is first used, before all else.
class QUARRIX_API CollisionDetector final : public IConfigurationFactory, public IDisposable {
public:
    /// With no volume given.
    CollisionDetector();
    /// The volume is kept and not heeded.
    explicit CollisionDetector(double maxAllowedVolume);
    ~CollisionDetector() override;
    void Dispose() override;

    ///@{
    /// Kept and not heeded.
    Collisions::ConcurrencyMode get_ConcurrencyMode() const;
    void set_ConcurrencyMode(Collisions::ConcurrencyMode value);
    ///@}

    /// As `ICollisionDetector::Check`.
    std::shared_ptr<CollisionResult> Check(const std::shared_ptr<ICollisionConfiguration>& configuration,
                                           CheckResultType checkType);
    /// The same with `FirstInterferenceStop`: a whole result, deliberately, not a bool.
    std::shared_ptr<CollisionResult> Check(const std::shared_ptr<ICollisionConfiguration>& configuration);
    std::shared_ptr<CollisionConfiguration> CreateNewConfiguration() override;
    ///@{
    /// As `ICollisionDetector::Dump`. `updatePositions` is not heeded.
    void Dump(const std::shared_ptr<ICollisionConfiguration>& configuration, std::ostream* writer);
    void Dump(const std::shared_ptr<ICollisionConfiguration>& configuration,
              std::ostream* writer,
              bool updatePositions);
    void Dump(const std::shared_ptr<ICollisionConfiguration>& configuration, Text filePath);
    void Dump(const std::shared_ptr<ICollisionConfiguration>& configuration,
              Text filePath,
              bool updatePositions);
    ///@}
    /// Writes a scene file, and a dump beside it: the path with ".stl" behind it.
    void Store(const std::shared_ptr<ICollisionConfiguration>& configuration, Text filePath);
    /// As `ICollisionDetector::Retrieve`.
    std::shared_ptr<CollisionConfiguration> Retrieve(Text filePath);
    ///@{
    /// Not available: throws `NotImplementedException`.
    void DumpAllStl(const std::shared_ptr<ICollisionConfiguration>& configuration, Text filePath);
    void DumpPosition(const std::shared_ptr<ICollisionConfiguration>& configuration, Text folderPath);
    void SetGlobalClearance(double clearance);
    ///@}

    /// Gives up the bodies of all elements of all configurations at once.
    static void ClearAll();

private:
    QUARRIX_LOCAL NativeCollisionDetectorWrapper& Native() const;

    bool disposed_ = false;
    std::shared_ptr<NativeCollisionDetectorWrapper> native_;
    Collisions::ConcurrencyMode concurrency_mode_not_used_ = ConcurrencyMode::Single;
    [[maybe_unused]] double max_volume_not_used_ = 0.0;
};

}  // namespace Ostrel::Quarrix::Collisions
