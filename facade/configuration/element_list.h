#pragma once

#include "configuration/native_configuration.h"
#include "ostrel/quarrix/collision_configuration_element.h"
#include "ostrel/quarrix/collision_couple.h"
#include "ostrel/quarrix/exceptions.h"
#include "ostrel/quarrix/sequence.h"

#include "tarn/collision_result.h"

#include <memory>
#include <span>
#include <vector>

/// \file
/// Arguments and answers that are lists, and configurations as arguments.

namespace Ostrel::Quarrix::Collisions {

template <typename Item>
void RequireNotNull(const Sequence<Item>& sequence, Text param_name) {
    if (sequence.IsNull()) throw ArgumentNullException(param_name);
}

/// The elements of a list, each once, the first of equal ones. Throws `ArgumentNullException` for a null list
/// ("elements") and for a null in it.
std::vector<std::shared_ptr<ICollisionConfigurationElement>> DistinctElements(
    const Sequence<std::shared_ptr<ICollisionConfigurationElement>>& elements);

/// The couples of an answer of the engine, all with `Intersection` and a clearance of 0, whatever was
/// configured.
template <typename NativePair>
std::vector<std::shared_ptr<CollisionCouple>> BodyPair2CollisionCouple(
    const std::vector<NativePair>& pairs, const NativeConfiguration<CollisionKind>& configuration) {
    std::vector<std::shared_ptr<CollisionCouple>> couples;
    couples.reserve(pairs.size());
    for (const NativePair& pair : pairs) {
        couples.push_back(std::make_shared<CollisionCouple>(configuration.Resolve(pair.First),
                                                            configuration.Resolve(pair.Second),
                                                            CheckCoupleConfiguration::Intersection, 0.0));
    }
    return couples;
}

}  // namespace Ostrel::Quarrix::Collisions
