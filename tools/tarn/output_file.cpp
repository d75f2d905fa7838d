#include "output_file.h"

#include "readers/program_error.h"
#include "record/whole_file.h"

#include <fmt/format.h>

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

}  // namespace tarn::program
