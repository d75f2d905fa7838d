#include "tarn/collision_body.h"
#include "tarn/recorder.h"

#include <memory>
#include <unordered_set>
#include <vector>

namespace tarn {

namespace {

template <typename Configuration>
void Release(Configuration* configuration) {
    const std::unique_ptr<Configuration> owned(configuration);
    if (!owned) return;
    const std::vector<ICollisionBody*> bodies = owned->RetrieveElements();
    std::unordered_set<ICollisionElement*> elements;
    for (const ICollisionBody* body : bodies) {
        for (ICollisionElement* element : body->GetElements()) elements.insert(element);
    }
    for (const ICollisionBody* body : bodies) delete body;
    for (const ICollisionElement* element : elements) delete element;
}

}  // namespace

void ReleaseScene(ICollisionConfiguration* configuration) {
    Release(configuration);
}

void ReleaseScene(IProximityConfiguration* configuration) {
    Release(configuration);
}

}  // namespace tarn
