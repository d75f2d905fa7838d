#include "output_file.h"

#include "readers/program_error.h"
#include "record/whole_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

namespace tarn::program {

void WriteOutputFile(const std::filesystem::path& target, const std::function<void(std::ostream&)>& write) {
    const std::error_code error = tarn::details::WriteWholeFile(target, write);
    if (error)
        throw ProgramError(fmt::format("{}: cannot be written ({})", target.string(), error.message()));
}

bool IsSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
    std::error_code error;
    if (std::filesystem::exists(one, error) && std::filesystem::exists(other, error)) {
        return std::filesystem::is_regular_file(one, error) && std::filesystem::equivalent(one, other, error);
    }
    const auto resolved = std::filesystem::weakly_canonical(one, error);
    return !error && resolved == std::filesystem::weakly_canonical(other, error) && !error;
}

void RefuseOverwriting(const std::vector<std::string>& inputs, const std::vector<std::string>& outputs) {
    std::vector<std::string> taken = inputs;
    for (const std::string& path : outputs) {
        if (path.empty()) continue;
        const auto is_same = [&path](const std::string& other) { return IsSameFile(path, other); };
        if (std::ranges::any_of(taken, is_same))
            throw ProgramError(path + ": is to be written, but is another of the files given");
        taken.push_back(path);
    }
}

}  // namespace tarn::program
