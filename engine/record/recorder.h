#pragma once

#include "tarn/recorder.h"

namespace tarn::details {

/// The library's only recorder. What callers may expect stands with the interface.
class Recorder final : public IRecorder {
public:
    void Store(IProximityConfiguration* configuration, const std::string& path) override;
    void Store(ICollisionConfiguration* configuration, const std::string& path) override;
    void Retrieve(const std::string& path, IProximityConfiguration** out) override;
    void Retrieve(const std::string& path, ICollisionConfiguration** out) override;

    /// Writes triangles (see record/scene_writer.cpp).
    class TrianglesXMLfierVisitor;
    /// Read the parts of a scene (see record/scene_visitors.h).
    class XMLOwnersVisitor;
    class XMLElementsVisitor;
    class XMLPairsVisitor;
    class XMLProximityPairsVisitor;
};

}  // namespace tarn::details
