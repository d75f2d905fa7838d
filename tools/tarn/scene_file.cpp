#include "scene_file.h"

#include "readers/program_error.h"
#include "readers/system_cause.h"
#include "readers/text_characters.h"

#include "tarn/exception.h"
#include "tarn/factory.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <new>
#include <unordered_map>

namespace tarn::program {
namespace {

/// The first bytes of a file: enough for a scene's first tag. Throws for what cannot be opened.
std::string BeginningOf(const std::string& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) throw ProgramError(path + ": is a folder, not a file");
    if (std::filesystem::exists(path, ignored) && !std::filesystem::is_regular_file(path, ignored))
        throw ProgramError(path + ": is no regular file, from which alone scenes are read");
    errno = 0;
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw ProgramError(path + ": cannot be opened" + SystemCause());
    std::array<char, 256> bytes{};
    stream.read(bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(stream.gcount())};
}

template <typename Configuration>
std::shared_ptr<Configuration> Retrieve(const std::string& path) {
    Configuration* configuration = nullptr;
    tarn::make_unique_recorder()->Retrieve(path, &configuration);
    return {configuration, [](Configuration* scene) { tarn::ReleaseScene(scene); }};
}

Scene RetrieveAs(bool is_proximity, const std::string& path) {
    if (is_proximity) return Retrieve<tarn::IProximityConfiguration>(path);
    return Retrieve<tarn::ICollisionConfiguration>(path);
}

/// Only the recorder knows for certain of what kind a scene is.
Scene RetrieveEither(const std::string& path) {
    const bool is_probably_proximity = BeginningOf(path).find("proximity") != std::string::npos;
    for (const bool is_proximity : {is_probably_proximity, !is_probably_proximity}) {
        try {
            return RetrieveAs(is_proximity, path);
        } catch (const tarn::InconsistentDataException& error) {
            if (error.message() != "Wrong scene type.") throw;
        }
    }
    throw ProgramError(path + ": is no scene (its type is neither collision nor proximity)");
}

std::string MessageOf(const tarn::Exception& error) {
    return error.nested() == nullptr ? error.message() : error.message() + ": " + error.nested()->message();
}

/// The recorder names the path behind its own words, and behind the path what the system says.
std::string CauseOf(const tarn::Exception& error, const std::string& path) {
    const std::string named = "filename=" + path;
    const std::size_t at = error.message().find(named);
    const bool has_cause = at != std::string::npos && at + named.size() < error.message().size();
    return has_cause ? error.message().substr(at + named.size()) : " (" + error.message() + ")";
}

}  // namespace

bool LooksLikeScene(const std::string& path) {
    std::string ending = std::filesystem::path(path).extension().string();
    std::ranges::transform(ending, ending.begin(), InLowerCase);
    // Asked first, so that pipes, which other readers read, are not touched.
    std::error_code ignored;
    return ending == ".xml" ||
           (std::filesystem::is_regular_file(path, ignored) && BeginningOf(path).starts_with("<scene"));
}

Scene ReadScene(const std::string& path) {
    try {
        return RetrieveEither(path);
    } catch (const tarn::InconsistentDataException& error) {
        throw ProgramError(fmt::format("{}: is no scene that can be read ({})", path, MessageOf(error)));
    } catch (const tarn::RuntimeException& error) {
        throw ProgramError(path + ": cannot be read" + CauseOf(error, path));
    } catch (const std::bad_alloc&) {
        throw ProgramError(path + ": out of memory");
    }
}

void WriteScene(CoupleCheck& check, const std::string& path) {
    try {
        check.Store(path);
    } catch (const tarn::InvalidArgumentException& error) {
        throw ProgramError(fmt::format("{}: cannot be written: {}", path, error.message()));
    } catch (const tarn::RuntimeException& error) {
        throw ProgramError(path + ": cannot be written" + CauseOf(error, path));
    }
}

Model ModelOf(const std::vector<tarn::ICollisionBody*>& bodies) {
    Model model;
    std::unordered_map<std::uint64_t, std::size_t> owners;
    for (const tarn::ICollisionBody* const body : bodies) {
        const auto [owner, is_new] = owners.try_emplace(body->GetOwner(), owners.size());
        // Signed, as it stands in the file.
        if (is_new) model.owners.push_back(fmt::format("{}", static_cast<std::int64_t>(owner->first)));
        Part& part = model.parts.emplace_back();
        part.owner = owner->second;
        part.name = body->GetName();
        if (part.name.empty()) part.name = fmt::format("body {}", body->GetId());
    }
    std::vector<std::string*> names;
    for (Part& part : model.parts) names.push_back(&part.name);
    MakeUnique(names);
    return model;
}

}  // namespace tarn::program
