#include "record/crowded_tag.h"

#include <algorithm>
#include <array>

namespace tarn::details {

namespace {

/// What begins with "<" and is no tag, and what ends it. The first that fits counts.
struct NoTag {
    std::string_view begin;
    std::string_view end;
};
constexpr std::array<NoTag, 4> kNoTags{{
    {"<?", "?>"},
    {"<!--", "-->"},
    {"<![CDATA[", "]]>"},
    {"<!", ">"},
}};

/// Cuts off the front of `text` up to and with `end`, or all of it.
void SkipBehind(std::string_view& text, std::string_view end) {
    const std::size_t at = text.find(end);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + end.size());
}

/// Takes one tag off the front of `text`. Returns how many values in quotes it has, at most one more than
/// anybody wants.
std::size_t SkipTag(std::string_view& text) {
    for (std::size_t count = 0;;) {
        const std::size_t at = text.find_first_of("\"'>");
        if (at == std::string_view::npos || text[at] == '>' || ++count > kMostAttributes) {
            SkipBehind(text, ">");
            return count;
        }
        const std::string_view quote = text.substr(at, 1);
        text.remove_prefix(at + 1);
        SkipBehind(text, quote);
    }
}

}  // namespace

std::optional<std::size_t> LineOfCrowdedTag(std::string_view xml) {
    std::string_view rest = xml;
    for (;;) {
        rest.remove_prefix(std::min(rest.find('<'), rest.size()));
        if (rest.empty()) return std::nullopt;
        const auto* const no_tag =
            std::ranges::find_if(kNoTags, [&](const NoTag& kind) { return rest.starts_with(kind.begin); });
        if (no_tag != kNoTags.end()) {
            rest.remove_prefix(no_tag->begin.size());
            SkipBehind(rest, no_tag->end);
            continue;
        }
        const std::size_t begin = xml.size() - rest.size();
        if (SkipTag(rest) > kMostAttributes) {
            const auto lines_before = std::ranges::count(xml.substr(0, begin), '\n');
            return static_cast<std::size_t>(lines_before) + 1;
        }
    }
}

}  // namespace tarn::details
