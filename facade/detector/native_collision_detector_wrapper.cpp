#include "detector/native_collision_detector_wrapper.h"

#include "configuration/element_list.h"
#include "detector/retrieved_scene.h"

#include "tarn/factory.h"

namespace Ostrel::Quarrix::Collisions {

std::shared_ptr<const NativeCollisionConfigurationWrapper> NativeOf(
    const std::shared_ptr<ICollisionConfiguration>& configuration) {
    if (auto native = std::dynamic_pointer_cast<const NativeCollisionConfigurationWrapper>(configuration))
        return native;
    const auto* own = dynamic_cast<const CollisionConfiguration*>(configuration.get());
    if (!own) throw NullReferenceException();
    return own->Native();
}

NativeCollisionDetectorWrapper::NativeCollisionDetectorWrapper()
    : NativeDetectorWrapper(tarn::make_unique_detector()) {}

std::shared_ptr<CollisionResult> NativeCollisionDetectorWrapper::Check(
    const std::shared_ptr<ICollisionConfiguration>& configuration, CheckResultType checkType) {
    tarn::ICollisionDetector& detector = Live();
    const tarn::CheckPolicy policy = PolicyOf(checkType);
    const auto operation = NativeOf(configuration)->Live();
    tarn::CollisionResult result;
    detector.Check(result, operation->Native(), policy);
    return std::make_shared<CollisionResult>(
        result.get_InterferenceDetected(), InterferenceResultType::Intersect,
        TrianglesOf(result.get_Triangles()), BodyPair2CollisionCouple(result.get_Pairs(), *operation));
}

std::shared_ptr<ICollisionConfiguration> NativeCollisionDetectorWrapper::Retrieve(Text filePath) {
    return RetrieveNative(filePath);
}

std::shared_ptr<NativeCollisionConfigurationWrapper> NativeCollisionDetectorWrapper::RetrieveNative(
    Text filePath) {
    Live();
    const auto scene = RetrieveScene<tarn::ICollisionConfiguration>(RequirePath(filePath));
    return std::make_shared<NativeCollisionConfigurationWrapper>(scene.get());
}

std::shared_ptr<ICollisionConfiguration> NativeCollisionDetectorWrapper::CreateNewConfiguration() {
    return std::make_shared<NativeCollisionConfigurationWrapper>();
}

}  // namespace Ostrel::Quarrix::Collisions
