#pragma once

#include "tarn/factory.h"
#include "tarn/recorder.h"

#include <memory>
#include <string>

namespace Ostrel::Quarrix::Collisions {

struct SceneDeleter {
    template <typename Configuration>
    void operator()(Configuration* configuration) const {
        tarn::ReleaseScene(configuration);
    }
};

/// A configuration of the engine that came back from a scene file, with its bodies and elements.
template <typename Configuration>
std::unique_ptr<Configuration, SceneDeleter> RetrieveScene(const std::string& path) {
    Configuration* configuration = nullptr;
    tarn::make_unique_recorder()->Retrieve(path, &configuration);
    return std::unique_ptr<Configuration, SceneDeleter>(configuration);
}

}  // namespace Ostrel::Quarrix::Collisions
