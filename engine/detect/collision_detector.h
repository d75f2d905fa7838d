#pragma once

#include "detect/filters.h"

#include "tarn/collision_detector.h"

namespace tarn::details {

/// The library's only interference checker. What callers may expect stands with the interface.
class CollisionDetector final : public ICollisionDetector {
public:
    explicit CollisionDetector(Filters filters = Filters::On) : filters_(filters) {}

    bool Check(ICollisionConfiguration& configuration) override;
    CollisionResult& Check(CollisionResult& result,
                           ICollisionConfiguration& configuration,
                           CheckPolicy policy) override;
    void Dump(ICollisionConfiguration& configuration, DumpType type, std::ostream& stream) override;

private:
    Filters filters_;
};

}  // namespace tarn::details
