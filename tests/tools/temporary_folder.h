#pragma once

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace tarn::program {

inline std::string FileText(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A folder for one test case, removed with all it holds. Cases of one binary may run beside each other as
/// processes.
class TemporaryFolder final {
public:
    TemporaryFolder() {
        static std::atomic<int> counter = 0;
        path_ = std::filesystem::temp_directory_path() /
                ("tarn_test_" + std::to_string(getpid()) + "_" + std::to_string(counter.fetch_add(1)));
        std::filesystem::create_directories(path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }
    std::string Path(std::string_view name) const { return (path_ / name).string(); }

    /// Writes a file and returns its path.
    std::string Write(std::string_view name, std::string_view content) const {
        std::ofstream stream(path_ / name, std::ios::binary);
        stream.write(content.data(), static_cast<std::streamsize>(content.size()));
        return (path_ / name).string();
    }

    std::size_t FileCount() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
    }

private:
    std::filesystem::path path_;
};

}  // namespace tarn::program
