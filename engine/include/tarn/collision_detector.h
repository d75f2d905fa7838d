#pragma once

#include "tarn/check_policy.h"
#include "tarn/collision_configuration.h"
#include "tarn/collision_result.h"
#include "tarn/dump_type.h"
#include "tarn/export.h"

#include <iosfwd>

namespace tarn {

/// The interference checker. It has no state: one detector serves any number of configurations, and two are
/// interchangeable. Made by `make_detector`.
///
/// A couple interferes exactly when some triangle of its first body intersects some triangle of its second at
/// their current placements. What the check promises:
///  (1) A couple whose bodies have disjoint world boxes, or one of whose bodies has no triangle, never
///      interferes.
///  (2) `AllInterferences` and `AllInterferencesWithTriangles` report the same couples, in the
///      configuration's couple order, at any number of threads.
///  (3) The triangles of a couple are the first intersecting pair in traversal order: the same on every run.
///  (4) `Check(configuration)` is true exactly when `AllInterferences` reports a couple.
/// Limits, in the caller's length unit: the triangle test's tolerances are absolute and suit millimetres.
/// Crossings of triangles with edges below about 0.01 are not seen, a contact through a triangle's first
/// vertex and coplanar contact do not count, and coplanar faces with edges of about a thousand and more,
/// turned or far from the origin, can be seen to cross where they lie flush. Triangles farther apart than
/// 2e-5 of their longest edge never are.
///
/// Every call first makes the pending placements current (`UpdateBodies`), then throws:
///  - `InvalidArgumentException` for a policy outside the list,
///  - `std::bad_cast`, if it is a check, for a configuration that provides no couples, and if it is a dump,
///    for a body of a foreign class,
///  - `LogicException`, naming the body, where the call would reach a body that was never built.
/// After any exception, one out of memory included, the caller's result is as it was.
///
/// Thread-safety: calls may run beside each other, also on one configuration or on configurations that share
/// bodies, as long as nobody changes a configuration or a body meanwhile. A check uses as many threads as the
/// machine has, or as `RunWithThreadLimit` allows.
class TARN_API ICollisionDetector {
public:
    virtual ~ICollisionDetector() = default;

    /// Whether any enabled couple interferes. Ends at the first that does.
    virtual bool Check(ICollisionConfiguration& configuration) = 0;
    /// Replaces `result` by what the policy asks for and returns it.
    virtual CollisionResult& Check(CollisionResult& result,
                                   ICollisionConfiguration& configuration,
                                   CheckPolicy policy) = 0;
    /// Writes all bodies of the configuration, in world coordinates, as one ASCII STL solid. Numbers come in
    /// the stream's own format. Stream errors are left in the stream's state. Nothing is written if it
    /// throws.
    virtual void Dump(ICollisionConfiguration& configuration, DumpType type, std::ostream& stream) = 0;
};

}  // namespace tarn
