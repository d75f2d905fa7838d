#include "detector/native_collision_detector_wrapper.h"

#include "configuration/element_list.h"
#include "configuration/native_collision_configuration_wrapper.h"
#include "detector/detector_arguments.h"
#include "detector/retrieved_scene.h"
#include "ostrel/quarrix/exceptions.h"

#include "tarn/factory.h"

#include <utility>

namespace Ostrel::Quarrix::Collisions {

NativeCollisionConfigurationWrapper& NativeOf(const std::shared_ptr<ICollisionConfiguration>& configuration) {
    if (auto* native = dynamic_cast<NativeCollisionConfigurationWrapper*>(configuration.get()))
        return *native;
    const auto* own = dynamic_cast<const CollisionConfiguration*>(configuration.get());
    if (!own) throw NullReferenceException();
    return *own->native_;
}

NativeCollisionDetectorWrapper::NativeCollisionDetectorWrapper() : detector_(tarn::make_unique_detector()) {}

tarn::ICollisionDetector& NativeCollisionDetectorWrapper::Live() const {
    if (!detector_) throw ObjectDisposedException("");
    return *detector_;
}

std::shared_ptr<CollisionResult> NativeCollisionDetectorWrapper::Check(
    const std::shared_ptr<ICollisionConfiguration>& configuration, CheckResultType checkType) {
    tarn::ICollisionDetector& detector = Live();
    const tarn::CheckPolicy policy = PolicyOf(checkType);
    auto& native = NativeOf(configuration).Live();
    tarn::CollisionResult result;
    detector.Check(result, native.Live(), policy);
    return std::make_shared<CollisionResult>(
        result.get_InterferenceDetected(), InterferenceResultType::Intersect,
        TrianglesOf(result.get_Triangles()), BodyPair2CollisionCouple(result.get_Pairs(), native));
}

bool NativeCollisionDetectorWrapper::Check(const std::shared_ptr<ICollisionConfiguration>& configuration) {
    tarn::ICollisionDetector& detector = Live();
    return detector.Check(NativeOf(configuration).Live().Live());
}

void NativeCollisionDetectorWrapper::Dump(const std::shared_ptr<ICollisionConfiguration>& configuration,
                                          std::ostream* writer) {
    tarn::ICollisionDetector& detector = Live();
    DumpToWriter(writer, configuration.get(), [&](std::ostream& stream) {
        detector.Dump(NativeOf(configuration).Live().Live(), tarn::DumpType::Triangles, stream);
    });
}

void NativeCollisionDetectorWrapper::Dump(const std::shared_ptr<ICollisionConfiguration>& configuration,
                                          Text filePath) {
    tarn::ICollisionDetector& detector = Live();
    const std::string path = RequirePath(filePath, configuration.get());
    // Before the file is opened: an older one is not lost to a configuration that cannot be dumped.
    auto& native = NativeOf(configuration).Live().Live();
    DumpToFile(path, [&](std::ostream& stream) { detector.Dump(native, tarn::DumpType::Triangles, stream); });
}

void NativeCollisionDetectorWrapper::Store(const std::shared_ptr<ICollisionConfiguration>& configuration,
                                           Text filePath) {
    Live();
    const std::string path = RequirePath(filePath, configuration.get());
    tarn::make_unique_recorder()->Store(&NativeOf(configuration).Live().Live(), path);
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
