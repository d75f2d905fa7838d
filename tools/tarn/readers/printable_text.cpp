#include "readers/printable_text.h"

#include <fmt/format.h>

#include <cstddef>
#include <iterator>

namespace tarn::program {

namespace {

/// How many bytes at the beginning of the text, which is not empty, are a character that would break a line or
/// command a terminal, or change the order in which it shows others. 0 if the first character is another.
std::size_t CommandingLength(std::string_view text) {
    const auto code = [text](std::size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    const auto is_between = [&code](std::size_t at, unsigned first, unsigned last) {
        return code(at) >= first && code(at) <= last;
    };
    if (is_between(0, 0, 0x1f) || code(0) == 0x7f) return 1;
    if (code(0) == 0xc2 && is_between(1, 0x80, 0x9f)) return 2;  // U+0080 to U+009F
    if (code(0) != 0xe2) return 0;
    const bool is_separator_or_override = code(1) == 0x80 && is_between(2, 0xa8, 0xae);  // U+2028 to U+202E
    const bool is_isolate = code(1) == 0x81 && is_between(2, 0xa6, 0xa9);                // U+2066 to U+2069
    return is_separator_or_override || is_isolate ? 3 : 0;
}

/// The beginning of a text, of so many bytes at most, that cuts no UTF-8 character.
std::string_view Beginning(std::string_view text, std::size_t longest) {
    constexpr std::size_t kMostFollowers = 3;  // bytes of a character behind its first
    const auto is_follower = [text](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xc0U) == 0x80U;
    };
    if (text.size() <= longest) return text;
    std::size_t size = longest;
    while (size > 0 && longest - size < kMostFollowers && is_follower(size)) --size;
    return text.substr(0, is_follower(size) ? longest : size);
}

}  // namespace

std::string Printable(std::string_view text) {
    std::string printable;
    printable.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = CommandingLength(text);
        for (const char byte : text.substr(0, length)) {
            fmt::format_to(std::back_inserter(printable), "\\x{:02x}", static_cast<unsigned char>(byte));
        }
        if (length == 0) printable.push_back(text.front());
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return printable;
}

std::string Excerpt(std::string_view word) {
    constexpr std::size_t kLongest = 40;  // bytes; leaves the error's own words on the same screen line
    return word.size() <= kLongest ? Printable(word) : Printable(Beginning(word, kLongest)) + "...";
}

}  // namespace tarn::program
