#pragma once

#include "tarn/collision_element.h"
#include "tarn/export.h"
#include "tarn/matrix.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn {

/// What `ICollisionBody::GetStatistics` tells of the body's box hierarchy. All zero before the first build.
struct CollisionBodyStatistics {
    std::uint64_t leaf_number = 0;       ///< most triangles in a leaf
    std::uint64_t triangle_count = 0;    ///< triangles in all leaves
    std::uint64_t depth = 0;             ///< inner nodes on the path of first children from the root
    std::uint64_t storage_estimate = 0;  ///< triangle_count x 80, in bytes
};

/// A set of elements under one placement: what checks are about. A body has an identifier, an owner by which
/// configurations group it, a name, and a box hierarchy over copies of its elements' triangles.
///
/// Life: `make_body`, `AddElement`, `SetLeafNumber` (builds the hierarchy), `SetMatrix` as often as the part
/// moves. Nobody builds the hierarchy on the caller's behalf: after a change of the elements call
/// `SetLeafNumber` again. Moving never rebuilds it. A body owns its hierarchy and copies of the triangles,
/// never its elements: remove an element, or destroy the body, before the element dies.
///
/// Thread-safety: operations that change the body (`SetMatrix`, `SetLeafNumber`, `AddElement`,
/// `RemoveElement`, `SetOwner`) run alone, not beside each other and not beside a check that uses the body.
/// `Update` may run beside `Update` and beside checks.
class TARN_API ICollisionBody {
public:
    virtual ~ICollisionBody() = default;

    /// Fixed at creation. Configurations know a body's couples by this identifier alone.
    virtual std::uint32_t GetId() const = 0;
    /// By what configurations group the body.
    virtual std::uint64_t GetOwner() const = 0;
    /// Configurations do not notice the change of a body that they hold already.
    virtual void SetOwner(std::uint64_t owner) = 0;
    /// For messages and scene files.
    virtual std::string GetName() const = 0;

    /// Adds an element, not owned. The next `SetLeafNumber` with an unchanged number rebuilds only if the
    /// last `AddElement` or `RemoveElement` changed the set: adding what is there already cancels an earlier
    /// request. Throws `NullPointerException` for null and `BadCastException` for an element that
    /// `make_element` did not make; the body is unchanged then.
    virtual void AddElement(ICollisionElement* element) = 0;
    /// Removes an element; the others keep their order. Removing what is absent cancels an earlier request to
    /// rebuild. Throws `NullPointerException` for null.
    virtual void RemoveElement(ICollisionElement* element) = 0;
    /// Throws `NullPointerException` for null.
    virtual bool HasElement(ICollisionElement* element) const = 0;

    /// Hands in a placement, local to world. It takes effect at the next `Update`, which every check calls.
    virtual void SetMatrix(const MATRIX& matrix) = 0;
    /// Makes the placement handed in last the current one. Writes nothing when none is pending. Costs the
    /// same whatever the number of triangles.
    virtual void Update() = 0;

    /// The elements in the order in which they were added.
    virtual std::vector<ICollisionElement*> GetElements() const = 0;
    /// Builds the hierarchy with at most `leaf_number` triangles a leaf (5 suits most meshes), in parallel;
    /// does nothing when the number is the present one and the last `AddElement` or `RemoveElement` changed
    /// nothing, or none came since the last build. Throws `std::invalid_argument` for a number below 1 and
    /// `std::length_error` for 2^30 triangles or more. If it throws, the body keeps the hierarchy that it
    /// had.
    virtual void SetLeafNumber(std::int16_t leaf_number) = 0;
    /// What the hierarchy is like.
    virtual CollisionBodyStatistics GetStatistics() const = 0;
};

}  // namespace tarn
