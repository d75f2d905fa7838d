#include "detect/check_preparation.h"

#include "tarn/exception.h"

#include <algorithm>
#include <string>

namespace tarn::details {

Procedure ProcedureOf(CheckPolicy policy) {
    switch (policy) {
        case CheckPolicy::FirstInterferenceStop:
            return {true, false};
        case CheckPolicy::FirstInterferenceStopWithTriangles:
            return {true, true};
        case CheckPolicy::AllInterferences:
            return {false, false};
        case CheckPolicy::AllInterferencesWithTriangles:
            return {false, true};
    }
    throw InvalidArgumentException();
}

void RequireBuilt(const CollisionBody& body) {
    if (body.Hierarchy()) return;
    throw LogicException(
        "Body '" + body.GetName() + "' (id " + std::to_string(body.GetId()) +
        ") has no hierarchy: call SetLeafNumber on it first, after the last change of its elements");
}

bool AllAreBuilt(const std::vector<ICollisionBody*>& bodies) {
    return std::ranges::all_of(bodies, [](const ICollisionBody* body) {
        const auto* own = dynamic_cast<const CollisionBody*>(body);
        return own && own->Hierarchy();
    });
}

}  // namespace tarn::details
