#pragma once

#include "tarn/collision_configuration.h"
#include "tarn/export.h"
#include "tarn/proximity_configuration.h"

#include <string>

namespace tarn {

/// Stores configurations, with their bodies and meshes, as XML scene files and rebuilds them. It has no
/// state. Made by `make_recorder`.
///
/// What a round trip preserves, bit for bit: the bodies in their order, with identifiers, owners, names and
/// leaf numbers; of each body the triangles in its hierarchy, in element coordinates; the couples in their
/// order, with clearances. What it does not: placements, elements (a retrieved body has one, named as the
/// body), owners without a body. Triangles are stored in the order of the tree, so a rebuilt body may come
/// out with another tree. A body that was never built is stored without triangles and comes back built, as
/// all do. Bodies may share an identifier: all come back, and the first answers for couples. So a stored
/// couple comes back as the couple of the first bodies with its identifiers.
///
/// Thread-safety: calls may run beside each other, as long as nobody changes a configuration or a body that
/// is being stored.
class TARN_API IRecorder {
public:
    virtual ~IRecorder() = default;

    ///@{
    /// Writes a scene to `path`, in the narrow encoding of the system. The file is replaced as a whole: it is
    /// written under a temporary name beside the target, which then takes the target's name; links are
    /// followed and permissions kept. Where no temporary file can be made, and where the target is no regular
    /// file, it is written directly.
    ///
    /// Throws `NullPointerException` for null, and before anything is written `InvalidArgumentException` for
    /// what could not be read again, naming the body: a name with characters that XML does not carry (NUL and
    /// the control characters but tab, line feed and carriage return), coordinates that are not finite, a
    /// negative clearance. Throws `RuntimeException`, naming the path, when the file cannot be written whole;
    /// an older file of that name is as it was then, unless it had to be written directly.
    virtual void Store(IProximityConfiguration* configuration, const std::string& path) = 0;
    virtual void Store(ICollisionConfiguration* configuration, const std::string& path) = 0;
    ///@}

    ///@{
    /// Reads a scene and sets `*out` to a new configuration. The caller owns it, its bodies and their
    /// elements; `ReleaseScene` releases all of them. All hierarchies are built.
    ///
    /// Throws `NullPointerException` where `out` is null, `RuntimeException` for a file that cannot be read,
    /// `InconsistentDataException` for one that is no scene of that kind; the message names the place. `*out`
    /// stays as it was then. Whatever the bytes, nothing else happens; memory is up to some forty times the
    /// size of the file.
    virtual void Retrieve(const std::string& path, IProximityConfiguration** out) = 0;
    virtual void Retrieve(const std::string& path, ICollisionConfiguration** out) = 0;
    ///@}
};

///@{
/// Deletes a configuration, all its bodies and all their elements, each once. For retrieved scenes, and for
/// whatever else is owned in that way; null is ignored. Bodies that were removed from the configuration
/// before are left to the caller.
TARN_API void ReleaseScene(ICollisionConfiguration* configuration);
TARN_API void ReleaseScene(IProximityConfiguration* configuration);
///@}

}  // namespace tarn
