#include "output_file.h"

#include "readers/program_error.h"
#include "readers/system_cause.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <system_error>

namespace tarn::program {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const fs::path& target, const std::string& cause) {
    throw ProgramError(fmt::format("{}: cannot be written{}", target.string(), cause));
}

[[noreturn]] void Fail(const fs::path& target, const std::error_code& error) {
    Fail(target, " (" + error.message() + ")");
}

/// The file that a name stands for in the end, which need not exist: a link may dangle.
fs::path FollowLinks(const fs::path& target) {
    constexpr int kLongestChain = 40;  // as the systems' own limit, against links in a circle
    fs::path path = target;
    for (int link = 0; link < kLongestChain; ++link) {
        std::error_code error;
        const fs::path next = fs::read_symlink(path, error);
        if (error) return path;
        path = path.parent_path() / next;  // an absolute `next` replaces all
    }
    Fail(target, " (too many symbolic links)");
}

/// A file of a new name beside another one. Removed again, unless it was renamed.
class TemporaryFile final {
public:
    explicit TemporaryFile(const fs::path& neighbour) {
        constexpr int kAttempts = 100;
        std::random_device random;
        errno = 0;
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            fs::path candidate = neighbour;
            candidate.replace_filename(fmt::format(".tarn-{:08x}{:08x}.tmp", random(), random()));
            // "x" asks for a file that is new, so that nobody else's file or link is ever followed.
            if (std::FILE* const file = std::fopen(candidate.string().c_str(), "wbx")) {
                std::fclose(file);
                path_ = candidate;
                return;
            }
            if (errno != EEXIST) break;
        }
        Fail(neighbour, SystemCause());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        std::error_code ignored;
        if (!path_.empty()) fs::remove(path_, ignored);
    }

    const fs::path& path() const { return path_; }

    void RenameTo(const fs::path& file, const fs::path& target) {
        std::error_code error;
        fs::rename(path_, file, error);
        if (error) Fail(target, error);
        path_.clear();
    }

private:
    fs::path path_;
};

/// Fills a file that can be opened for writing; `target` is the name that the user knows.
void Fill(const fs::path& file, const fs::path& target, const std::function<void(std::ostream&)>& write) {
    errno = 0;
    std::ofstream stream(file, std::ios::binary);
    if (!stream) Fail(target, SystemCause());
    write(stream);
    // Closing writes what is still buffered, so a full disk may show only here.
    stream.close();
    if (!stream) Fail(target, SystemCause());
}

/// Renaming over a read-only file would succeed; the user protected it, so it is opened once without a
/// change.
void RequireWritable(const fs::path& file, const fs::path& target) {
    errno = 0;
    const std::ofstream stream(file, std::ios::binary | std::ios::app);
    if (!stream) Fail(target, SystemCause());
}

}  // namespace

void WriteOutputFile(const fs::path& target, const std::function<void(std::ostream&)>& write) {
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    if (status.type() == fs::file_type::directory) Fail(target, " (is a folder)");
    if (status.type() == fs::file_type::none) Fail(target, error);
    const bool file_exists = fs::exists(status);
    if (file_exists && !fs::is_regular_file(status)) return Fill(target, target, write);

    const fs::path file = file_exists ? fs::canonical(target, error) : FollowLinks(target);
    if (error && file_exists) Fail(target, error);
    if (file_exists) RequireWritable(file, target);

    TemporaryFile temporary(file);
    Fill(temporary.path(), target, write);
    if (file_exists) fs::permissions(temporary.path(), status.permissions(), error);
    if (error && file_exists) Fail(target, error);
    temporary.RenameTo(file, target);
}

bool IsSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
    std::error_code error;
    if (std::filesystem::exists(one, error) && std::filesystem::exists(other, error)) {
        return std::filesystem::is_regular_file(one, error) && std::filesystem::equivalent(one, other, error);
    }
    const auto resolved = std::filesystem::weakly_canonical(one, error);
    return !error && resolved == std::filesystem::weakly_canonical(other, error) && !error;
}

}  // namespace tarn::program
