#include "short_names.h"

#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace tarn::program {
namespace {

/// The ending that is one step longer than a given one, which is empty at first. Given the whole, the whole.
std::string_view LongerEnding(std::string_view name, std::string_view ending) {
    if (ending.size() == name.size()) return name;
    const std::size_t before = name.size() - ending.size();  // where the ending starts
    const std::size_t slash = name.substr(0, ending.empty() ? before : before - 1).rfind('/');
    return slash == std::string_view::npos ? name : name.substr(slash + 1);
}

}  // namespace

std::vector<std::string> ShortNames(const std::vector<Part>& parts) {
    std::unordered_map<std::string_view, std::size_t> counts;
    for (const Part& part : parts) {
        std::string_view ending;
        do {
            ending = LongerEnding(part.name, ending);
            ++counts[ending];
        } while (ending.size() < part.name.size());
    }
    std::vector<std::string> short_names;
    short_names.reserve(parts.size());
    for (const Part& part : parts) {
        std::string_view ending = LongerEnding(part.name, {});
        while (ending.size() < part.name.size() && counts[ending] > 1)
            ending = LongerEnding(part.name, ending);
        short_names.emplace_back(part.is_whole_file ? std::string_view(part.name) : ending);
    }
    return short_names;
}

}  // namespace tarn::program
