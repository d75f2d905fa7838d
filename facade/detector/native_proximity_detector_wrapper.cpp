#include "detector/native_proximity_detector_wrapper.h"

#include "detector/retrieved_scene.h"

#include "tarn/factory.h"

#include <utility>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

std::shared_ptr<const NativeProximityConfigurationWrapper> NativeOf(
    const std::shared_ptr<IProximityConfiguration>& configuration) {
    auto native = std::dynamic_pointer_cast<const NativeProximityConfigurationWrapper>(configuration);
    if (!native) throw NullReferenceException();
    return native;
}

NativeProximityDetectorWrapper::NativeProximityDetectorWrapper()
    : NativeDetectorWrapper(tarn::make_unique_proximity_detector()) {}

std::shared_ptr<ProximityResult> NativeProximityDetectorWrapper::Check(
    const std::shared_ptr<IProximityConfiguration>& configuration, CheckResultType checkType) {
    tarn::IProximityDetector& detector = Live();
    const tarn::CheckPolicy policy = PolicyOf(checkType);
    const auto operation = NativeOf(configuration)->Live();
    tarn::ProximityResult result;
    detector.Check(result, operation->Native(), policy);
    std::vector<std::shared_ptr<InterferenceCouple>> couples;
    couples.reserve(result.get_Pairs().size());
    for (const tarn::ProximityPairResult& pair : result.get_Pairs()) {
        couples.push_back(std::make_shared<InterferenceCouple>(
            operation->Resolve(pair.get_First()), operation->Resolve(pair.get_Second()),
            pair.get_IntersectionFound(), pair.get_Clearance(),
            std::make_shared<DistanceSegment>(pair.get_Segment())));
    }
    return std::make_shared<ProximityResult>(result.get_InterferenceDetected(),
                                             TrianglesOf(result.get_Triangles()), std::move(couples));
}

std::shared_ptr<IProximityConfiguration> NativeProximityDetectorWrapper::Retrieve(Text filePath) {
    Live();
    const auto scene = RetrieveScene<tarn::IProximityConfiguration>(RequirePath(filePath));
    return std::make_shared<NativeProximityConfigurationWrapper>(scene.get());
}

}  // namespace Ostrel::Quarrix::Collisions
