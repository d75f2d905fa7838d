#pragma once

#include "tarn/collision_body.h"
#include "tarn/collision_configuration.h"
#include "tarn/collision_detector.h"
#include "tarn/collision_element.h"
#include "tarn/export.h"
#include "tarn/proximity_configuration.h"
#include "tarn/proximity_detector.h"
#include "tarn/recorder.h"
#include "tarn/triangle_data.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// \file
/// The entry points: every object of the library is made here. The `make_` functions return a raw pointer
/// that the caller owns and releases with `delete`; the companions below return owning handles and differ in
/// nothing else. Allocation failure is `std::bad_alloc`. All are safe from any thread.

namespace tarn {

/// A mesh from triangles in local coordinates; those with an edge of squared length up to 1e-7 are dropped.
[[nodiscard]] TARN_API ICollisionElement* make_element(const std::string& name,
                                                       const std::vector<TriangleData>& triangles);
/// A body without elements, at the identity placement.
[[nodiscard]] TARN_API ICollisionBody* make_body(std::uint32_t id,
                                                 std::uint64_t owner,
                                                 const std::string& name);
/// The same with the identifier as owner.
[[nodiscard]] TARN_API ICollisionBody* make_body(std::uint32_t id, const std::string& name);
/// A configuration without bodies.
[[nodiscard]] TARN_API ICollisionConfiguration* make_configuration();
/// An interference checker.
[[nodiscard]] TARN_API ICollisionDetector* make_detector();
/// A proximity configuration without bodies.
[[nodiscard]] TARN_API IProximityConfiguration* make_proximity_configuration();
/// A clearance checker.
[[nodiscard]] TARN_API IProximityDetector* make_proximity_detector();
/// What stores and retrieves scene files.
[[nodiscard]] TARN_API IRecorder* make_recorder();

///@{
/// Sole ownership.
[[nodiscard]] TARN_API std::unique_ptr<ICollisionElement> make_unique_element(
    const std::string& name, const std::vector<TriangleData>& triangles);
[[nodiscard]] TARN_API std::unique_ptr<ICollisionBody> make_unique_body(std::uint32_t id,
                                                                        std::uint64_t owner,
                                                                        const std::string& name);
[[nodiscard]] TARN_API std::unique_ptr<ICollisionConfiguration> make_unique_configuration();
[[nodiscard]] TARN_API std::unique_ptr<ICollisionDetector> make_unique_detector();
[[nodiscard]] TARN_API std::unique_ptr<IProximityConfiguration> make_unique_proximity_configuration();
[[nodiscard]] TARN_API std::unique_ptr<IProximityDetector> make_unique_proximity_detector();
[[nodiscard]] TARN_API std::unique_ptr<IRecorder> make_unique_recorder();
///@}

///@{
/// Shared ownership, counter and object in one allocation.
[[nodiscard]] TARN_API std::shared_ptr<ICollisionElement> make_shared_element(
    const std::string& name, const std::vector<TriangleData>& triangles);
[[nodiscard]] TARN_API std::shared_ptr<ICollisionBody> make_shared_body(std::uint32_t id,
                                                                        std::uint64_t owner,
                                                                        const std::string& name);
///@}
/// A body that holds the element and carries its name. The element is not owned. Throws
/// `NullPointerException` for null and `BadCastException` for an element that `make_element` did not make.
[[nodiscard]] TARN_API std::shared_ptr<ICollisionBody> make_shared_body(ICollisionElement* element,
                                                                        std::uint32_t id,
                                                                        std::uint64_t owner);
///@{
/// Shared ownership of a configuration without bodies, counter and object in one allocation.
[[nodiscard]] TARN_API std::shared_ptr<ICollisionConfiguration> make_shared_configuration();
[[nodiscard]] TARN_API std::shared_ptr<IProximityConfiguration> make_shared_proximity_configuration();
///@}

}  // namespace tarn
