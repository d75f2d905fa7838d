#include "detector/native_proximity_detector_wrapper.h"

#include "configuration/native_proximity_configuration_wrapper.h"
#include "detector/detector_arguments.h"
#include "detector/retrieved_scene.h"
#include "ostrel/quarrix/exceptions.h"

#include "tarn/factory.h"

#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

namespace {

NativeProximityConfigurationWrapper::Configuration& LiveOf(
    const std::shared_ptr<IProximityConfiguration>& configuration) {
    const auto* native = dynamic_cast<const NativeProximityConfigurationWrapper*>(configuration.get());
    if (!native) throw NullReferenceException();
    return native->Live();
}

}  // namespace

NativeProximityDetectorWrapper::NativeProximityDetectorWrapper()
    : detector_(tarn::make_unique_proximity_detector()) {}

tarn::IProximityDetector& NativeProximityDetectorWrapper::Live() const {
    if (!detector_) throw ObjectDisposedException("");
    return *detector_;
}

std::shared_ptr<ProximityResult> NativeProximityDetectorWrapper::Check(
    const std::shared_ptr<IProximityConfiguration>& configuration, CheckResultType checkType) {
    tarn::IProximityDetector& detector = Live();
    const tarn::CheckPolicy policy = PolicyOf(checkType);
    auto& native = LiveOf(configuration);
    tarn::ProximityResult result;
    detector.Check(result, native.Live(), policy);
    std::vector<std::shared_ptr<InterferenceCouple>> couples;
    couples.reserve(result.get_Pairs().size());
    for (const tarn::ProximityPairResult& pair : result.get_Pairs()) {
        couples.push_back(std::make_shared<InterferenceCouple>(
            native.Resolve(pair.get_First()), native.Resolve(pair.get_Second()), pair.get_IntersectionFound(),
            pair.get_Clearance(), std::make_shared<DistanceSegment>(pair.get_Segment())));
    }
    return std::make_shared<ProximityResult>(result.get_InterferenceDetected(),
                                             TrianglesOf(result.get_Triangles()), std::move(couples));
}

bool NativeProximityDetectorWrapper::Check(const std::shared_ptr<IProximityConfiguration>& configuration) {
    tarn::IProximityDetector& detector = Live();
    return detector.Check(LiveOf(configuration).Live());
}

void NativeProximityDetectorWrapper::Dump(const std::shared_ptr<IProximityConfiguration>& configuration,
                                          std::ostream* writer) {
    tarn::IProximityDetector& detector = Live();
    DumpToWriter(writer, configuration.get(), [&](std::ostream& stream) {
        detector.Dump(LiveOf(configuration).Live(), tarn::DumpType::Triangles, stream);
    });
}

void NativeProximityDetectorWrapper::Dump(const std::shared_ptr<IProximityConfiguration>& configuration,
                                          Text filePath) {
    tarn::IProximityDetector& detector = Live();
    const std::string path = RequirePath(filePath, configuration.get());
    // Before the file is opened: an older one is not lost to a configuration that cannot be dumped.
    auto& native = LiveOf(configuration).Live();
    DumpToFile(path, [&](std::ostream& stream) { detector.Dump(native, tarn::DumpType::Triangles, stream); });
}

void NativeProximityDetectorWrapper::Store(const std::shared_ptr<IProximityConfiguration>& configuration,
                                           Text filePath) {
    Live();
    const std::string path = RequirePath(filePath, configuration.get());
    tarn::make_unique_recorder()->Store(&LiveOf(configuration).Live(), path);
}

std::shared_ptr<IProximityConfiguration> NativeProximityDetectorWrapper::Retrieve(Text filePath) {
    Live();
    const auto scene = RetrieveScene<tarn::IProximityConfiguration>(RequirePath(filePath));
    return std::make_shared<NativeProximityConfigurationWrapper>(scene.get());
}

}  // namespace Ostrel::Quarrix::Collisions
