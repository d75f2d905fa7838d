#include "ostrel/quarrix/collision_detector.h"

#include "configuration/native_collision_configuration_wrapper.h"
#include "detector/native_collision_detector_wrapper.h"
#include "ostrel/quarrix/exceptions.h"
#include "registry/elements_manager.h"

#include <utility>

namespace Ostrel::Quarrix::Collisions {

CollisionDetector::CollisionDetector() : native_(std::make_shared<NativeCollisionDetectorWrapper>()) {}

CollisionDetector::CollisionDetector(double maxAllowedVolume) : CollisionDetector() {
    max_volume_not_used_ = maxAllowedVolume;
}

CollisionDetector::~CollisionDetector() {
    CollisionDetector::Dispose();
}

void CollisionDetector::Dispose() {
    if (std::exchange(disposed_, true)) return;
    native_->Dispose();
}

NativeCollisionDetectorWrapper& CollisionDetector::Native() const {
    if (disposed_) throw ObjectDisposedException("");
    return *native_;
}

ConcurrencyMode CollisionDetector::get_ConcurrencyMode() const {
    Native();
    return concurrency_mode_not_used_;
}

void CollisionDetector::set_ConcurrencyMode(Collisions::ConcurrencyMode value) {
    Native();
    concurrency_mode_not_used_ = value;
}

std::shared_ptr<CollisionResult> CollisionDetector::Check(
    const std::shared_ptr<ICollisionConfiguration>& configuration, CheckResultType checkType) {
    NativeCollisionDetectorWrapper& native = Native();
    NativeOf(configuration);
    return native.Check(configuration, checkType);
}

std::shared_ptr<CollisionResult> CollisionDetector::Check(
    const std::shared_ptr<ICollisionConfiguration>& configuration) {
    return Check(configuration, CheckResultType::FirstInterferenceStop);
}

std::shared_ptr<CollisionConfiguration> CollisionDetector::CreateNewConfiguration() {
    Native();
    return std::make_shared<CollisionConfiguration>();
}

void CollisionDetector::Dump(const std::shared_ptr<ICollisionConfiguration>& configuration,
                             std::ostream* writer) {
    NativeCollisionDetectorWrapper& native = Native();
    NativeOf(configuration);
    native.Dump(configuration, writer);
}

void CollisionDetector::Dump(const std::shared_ptr<ICollisionConfiguration>& configuration,
                             std::ostream* writer,
                             bool /*updatePositions*/) {
    Dump(configuration, writer);
}

void CollisionDetector::Dump(const std::shared_ptr<ICollisionConfiguration>& configuration, Text filePath) {
    NativeCollisionDetectorWrapper& native = Native();
    NativeOf(configuration);
    native.Dump(configuration, filePath);
}

void CollisionDetector::Dump(const std::shared_ptr<ICollisionConfiguration>& configuration,
                             Text filePath,
                             bool /*updatePositions*/) {
    Dump(configuration, filePath);
}

void CollisionDetector::Store(const std::shared_ptr<ICollisionConfiguration>& configuration, Text filePath) {
    NativeCollisionDetectorWrapper& native = Native();
    NativeOf(configuration);
    native.Store(configuration, filePath);
    native.Dump(configuration, filePath.ToString() + ".stl");
}

std::shared_ptr<CollisionConfiguration> CollisionDetector::Retrieve(Text filePath) {
    auto retrieved = Native().RetrieveNative(filePath);
    return std::shared_ptr<CollisionConfiguration>(new CollisionConfiguration(std::move(retrieved)));
}

void CollisionDetector::DumpAllStl(const std::shared_ptr<ICollisionConfiguration>& /*configuration*/,
                                   Text /*filePath*/) {
    Native();
    throw NotImplementedException();
}

void CollisionDetector::DumpPosition(const std::shared_ptr<ICollisionConfiguration>& /*configuration*/,
                                     Text /*folderPath*/) {
    Native();
    throw NotImplementedException();
}

void CollisionDetector::SetGlobalClearance(double /*clearance*/) {
    Native();
    throw NotImplementedException();
}

void CollisionDetector::ClearAll() {
    ElementsManager::get_Instance().Clear();
}

}  // namespace Ostrel::Quarrix::Collisions
