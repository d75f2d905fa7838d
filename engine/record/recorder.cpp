#include "record/recorder.h"

#include "config/collision_configuration.h"
#include "config/proximity_configuration.h"
#include "record/crowded_tag.h"
#include "record/scene_format.h"
#include "record/scene_visitors.h"
#include "record/scene_writer.h"
#include "record/whole_file.h"

#include "tarn/exception.h"

#include <tinyxml2.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace tarn::details {

namespace {

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

using OwnedFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// As the XML library words its errors.
std::string SaveErrorText(const std::string& path, const std::error_code& error) {
    constexpr tinyxml2::XMLError kError = tinyxml2::XML_ERROR_FILE_COULD_NOT_BE_OPENED;
    return "Error=" + std::string(XMLDocument::ErrorIDToName(kError)) + " ErrorID=" + std::to_string(kError) +
           ": filename=" + path + " (" + error.message() + ")";
}

template <typename Configuration>
void StoreScene(const Configuration* configuration, const std::string& path) {
    if (!configuration) throw NullPointerException();
    RequireStorable(*configuration);
    const std::error_code error =
        WriteWholeFile(path, [&](std::ostream& stream) { WriteScene(*configuration, stream); });
    if (error) throw RuntimeException(SaveErrorText(path, error));
}

[[noreturn]] void ThrowLoadError(const XMLDocument& document, const std::string& path) {
    const std::string text = document.ErrorStr();
    switch (document.ErrorID()) {
        case tinyxml2::XML_ERROR_FILE_NOT_FOUND:
        case tinyxml2::XML_ERROR_FILE_COULD_NOT_BE_OPENED:
        case tinyxml2::XML_ERROR_FILE_READ_ERROR:
            // The library names the path only where it has opened the file itself.
            throw RuntimeException(text.find(path) == std::string::npos ? text + ": filename=" + path : text);
        default:
            throw InconsistentDataException(text);
    }
}

/// A file's bytes; what cannot be read is left to the library, for its own error.
std::string Content(std::FILE* file) {
    std::string content;
    std::array<char, 65536> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file))
        content.append(block.data(), count);
    std::rewind(file);
    return content;
}

/// The file is opened here, so that it is closed whatever happens in the library. What cannot be opened is
/// left to the library, for its own error.
void Load(XMLDocument& document, const std::string& path) {
    const OwnedFile file(std::fopen(path.c_str(), "rb"), &std::fclose);
    if (file) {
        if (const auto line = LineOfCrowdedTag(Content(file.get()))) {
            throw InconsistentDataException("Tag with more than " + std::to_string(kMostAttributes) +
                                            " attributes (line " + std::to_string(*line) + ")");
        }
        document.LoadFile(file.get());
    } else {
        document.LoadFile(path.c_str());
    }
    if (document.Error()) ThrowLoadError(document, path);
}

/// Every element below the root, whose own name does not matter.
void Walk(const XMLElement& root, tinyxml2::XMLVisitor& visitor) {
    for (const tinyxml2::XMLNode* node = root.FirstChild(); node; node = node->NextSibling()) {
        if (!node->Accept(&visitor)) throw InconsistentDataException();
    }
}

template <typename Configuration, typename PairsVisitor, typename Interface>
void RetrieveScene(const std::string& path, const char* type, Interface** out) {
    if (!out) throw NullPointerException();
    XMLDocument document;
    Load(document, path);
    const XMLElement* const root = document.RootElement();
    if (!root) throw InconsistentDataException("No root element: filename=" + path);
    const char* const root_type = root->Attribute(scene::kType);
    if (!root_type || root_type != std::string_view(type))
        throw InconsistentDataException("Wrong scene type.");

    // The configuration refers to the bodies, so it comes last and goes first.
    Recorder::XMLElementsVisitor elements;
    auto configuration = std::make_unique<Configuration>();
    Recorder::XMLOwnersVisitor owners;
    Walk(*root, owners);
    Walk(*root, elements);
    for (const auto& body : elements.Bodies()) configuration->AddElement(body.get());
    PairsVisitor pairs(elements.ById(), *configuration);
    Walk(*root, pairs);

    elements.GiveAway();
    *out = configuration.release();
}

}  // namespace

void Recorder::Store(IProximityConfiguration* configuration, const std::string& path) {
    StoreScene(configuration, path);
}

void Recorder::Store(ICollisionConfiguration* configuration, const std::string& path) {
    StoreScene(configuration, path);
}

void Recorder::Retrieve(const std::string& path, IProximityConfiguration** out) {
    RetrieveScene<ProximityConfiguration, XMLProximityPairsVisitor>(path, scene::kProximity, out);
}

void Recorder::Retrieve(const std::string& path, ICollisionConfiguration** out) {
    RetrieveScene<CollisionConfiguration, XMLPairsVisitor>(path, scene::kCollision, out);
}

}  // namespace tarn::details
