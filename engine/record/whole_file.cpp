#include "record/whole_file.h"

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>

namespace tarn::details {

namespace {

namespace fs = std::filesystem;

/// Why the last call on a stream failed. Streams need not set `errno`.
std::error_code StreamError() {
    return errno != 0 ? std::error_code(errno, std::generic_category())
                      : std::make_error_code(std::errc::io_error);
}

/// A name in the folder of another file. Made of strings: where memory runs out while a path is changed in
/// place, the standard library of GCC 12 leaves it broken.
fs::path Beside(const fs::path& file, const std::string& name) {
    const std::string text = file.string();
    return {text.substr(0, text.size() - file.filename().string().size()) + name};
}

/// The file that a name stands for in the end, which need not exist: a link may dangle.
fs::path FollowLinks(const fs::path& target, std::error_code& error) {
    constexpr int kLongestChain = 40;  // as the systems' own limit, against links in a circle
    fs::path path = target;
    for (int link = 0; link < kLongestChain; ++link) {
        std::error_code is_no_link;
        const fs::path next = fs::read_symlink(path, is_no_link);
        if (is_no_link) return path;
        path = next.is_absolute() ? next : Beside(path, next.string());
    }
    error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
    return target;
}

/// A file of a new name beside another one, if one can be made. Removed again, unless it was renamed.
class TemporaryFile final {
public:
    explicit TemporaryFile(const fs::path& neighbour) {
        constexpr int kAttempts = 100;
        std::random_device random;
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            fs::path candidate =
                Beside(neighbour, ".tarn-" + std::to_string(random()) + std::to_string(random()) + ".tmp");
            // "x" asks for a file that is new, so that nobody else's file or link is ever followed.
            if (std::FILE* const file = std::fopen(candidate.string().c_str(), "wbx")) {
                std::fclose(file);
                path_ = std::move(candidate);
                return;
            }
            if (errno != EEXIST) return;
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        std::error_code ignored;
        if (exists()) fs::remove(path_, ignored);
    }

    bool exists() const { return !path_.empty(); }
    const fs::path& path() const { return path_; }

    std::error_code RenameTo(const fs::path& file) {
        std::error_code error;
        fs::rename(path_, file, error);
        if (!error) path_.clear();
        return error;
    }

private:
    fs::path path_;
};

std::error_code Fill(const fs::path& file, const std::function<void(std::ostream&)>& write) {
    errno = 0;
    std::ofstream stream(file, std::ios::binary);
    if (!stream) return StreamError();
    write(stream);
    // Closing writes what is still buffered, so a full disk may show only here.
    stream.close();
    return stream ? std::error_code() : StreamError();
}

/// Renaming over a read-only file would succeed; the user protected it, so it is opened once without a
/// change.
std::error_code TryToOpen(const fs::path& file) {
    errno = 0;
    const std::ofstream stream(file, std::ios::binary | std::ios::app);
    return stream ? std::error_code() : StreamError();
}

}  // namespace

std::error_code WriteWholeFile(const fs::path& target, const std::function<void(std::ostream&)>& write) {
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    if (status.type() == fs::file_type::directory) return std::make_error_code(std::errc::is_a_directory);
    if (status.type() == fs::file_type::none) return error;
    const bool file_exists = fs::exists(status);
    if (file_exists && !fs::is_regular_file(status)) return Fill(target, write);

    error.clear();
    const fs::path file = file_exists ? fs::canonical(target, error) : FollowLinks(target, error);
    if (error) return error;
    if (file_exists && (error = TryToOpen(file))) return error;

    TemporaryFile temporary(file);
    if (!temporary.exists()) return Fill(file, write);
    if ((error = Fill(temporary.path(), write))) return error;
    if (file_exists) fs::permissions(temporary.path(), status.permissions(), error);
    return error ? error : temporary.RenameTo(file);
}

}  // namespace tarn::details
