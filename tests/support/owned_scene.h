#pragma once

#include "tarn/factory.h"

#include <memory>
#include <string>

namespace tarn::test {

struct SceneRelease {
    template <typename Configuration>
    void operator()(Configuration* configuration) const {
        ReleaseScene(configuration);
    }
};

/// A configuration that owns its bodies and elements.
template <typename Configuration>
using OwnedScene = std::unique_ptr<Configuration, SceneRelease>;

template <typename Configuration>
OwnedScene<Configuration> RetrieveScene(const std::string& path) {
    Configuration* configuration = nullptr;
    make_unique_recorder()->Retrieve(path, &configuration);
    return OwnedScene<Configuration>(configuration);
}

}  // namespace tarn::test
