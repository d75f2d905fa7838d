#include "support/owned_scene.h"
#include "support/scene_content.h"

#include "tarn/exception.h"
#include "tarn/factory.h"
#include "tarn/thread_limit.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace tarn {
namespace {

namespace fs = std::filesystem;

/// A folder for this process, gone at its end.
class Folder final {
public:
    Folder() : path_(fs::temp_directory_path() / ("tarn_fuzz_scene_" + std::to_string(getpid()))) {
        fs::create_directories(path_);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    std::string operator/(const char* name) const { return (path_ / name).string(); }

private:
    fs::path path_;
};

void Require(bool holds) {
    if (!holds) std::abort();
}

using test::OwnedScene;

/// The scene in a file, or null with `*out` untouched where the file is none of that kind.
template <typename Configuration>
OwnedScene<Configuration> Retrieve(IRecorder& recorder, const std::string& path) {
    Configuration* configuration = nullptr;
    try {
        recorder.Retrieve(path, &configuration);
    } catch (const InconsistentDataException& error) {
        Require(!configuration);
        // Without a message only where a walk stops early, which none of the visitors asks for.
        Require(!error.message().empty());
        return nullptr;
    }
    Require(configuration != nullptr);
    return OwnedScene<Configuration>(configuration);
}

/// The parser lets control characters of names pass, which `Store` refuses.
bool IsStorable(const test::SceneContent& content) {
    const auto is_carried = [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte >= 0x20 || character == '\t' || character == '\n' || character == '\r';
    };
    return std::ranges::all_of(content.bodies, [&](const test::BodyContent& body) {
        return std::ranges::all_of(body.name, is_carried);
    });
}

/// What is read is stored and read again as the same.
template <typename Configuration>
void RequireRoundTrip(IRecorder& recorder, const std::string& input, const std::string& output) {
    const OwnedScene<Configuration> scene = Retrieve<Configuration>(recorder, input);
    if (!scene) return;
    const test::SceneContent content = test::ContentOf(*scene);
    try {
        recorder.Store(scene.get(), output);
    } catch (const InvalidArgumentException&) {
        Require(!IsStorable(content));
        return;
    }
    Require(IsStorable(content));
    const OwnedScene<Configuration> again = Retrieve<Configuration>(recorder, output);
    Require(again && test::ContentOf(*again) == content);
}

}  // namespace
}  // namespace tarn

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tarn::Folder folder;
    const std::string input = folder / "input.xml";
    const std::string output = folder / "output.xml";
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes are bytes
    const auto* const bytes = reinterpret_cast<const char*>(data);
    std::ofstream(input, std::ios::binary).write(bytes, static_cast<std::streamsize>(size));
    const auto recorder = tarn::make_unique_recorder();
    tarn::RunWithThreadLimit(1, [&] {
        tarn::RequireRoundTrip<tarn::ICollisionConfiguration>(*recorder, input, output);
        tarn::RequireRoundTrip<tarn::IProximityConfiguration>(*recorder, input, output);
    });
    return 0;
}
