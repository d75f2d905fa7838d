#include "name_pattern.h"

#include <cstddef>

namespace tarn::program {
namespace {

/// Goes back to the latest star alone: whatever an earlier one could take, the latest can take as well.
bool MatchesWhole(std::string_view pattern, std::string_view name) {
    std::size_t at = 0;
    std::size_t name_at = 0;
    std::size_t star = std::string_view::npos;
    std::size_t star_end = 0;  // where the characters end that the latest star stands for
    while (name_at < name.size()) {
        if (at < pattern.size() && pattern[at] == '*') {
            star = at++;
            star_end = name_at;
        } else if (at < pattern.size() && (pattern[at] == '?' || pattern[at] == name[name_at])) {
            ++at;
            ++name_at;
        } else if (star != std::string_view::npos) {
            at = star + 1;
            name_at = ++star_end;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

}  // namespace

bool NamePattern::Matches(std::string_view name) const {
    while (true) {
        if (MatchesWhole(text_, name)) return true;
        const std::size_t slash = name.find('/');
        if (slash == std::string_view::npos) return false;
        name.remove_prefix(slash + 1);
    }
}

}  // namespace tarn::program
