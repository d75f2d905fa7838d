#include "readers/printable_text.h"

#include <fmt/format.h>

#include <cstddef>
#include <iterator>

namespace tarn::program {

std::string Printable(std::string_view text) {
    std::string printable;
    printable.reserve(text.size());
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        const bool is_control = code < 0x20 || code == 0x7f;
        if (is_control) {
            fmt::format_to(std::back_inserter(printable), "\\x{:02x}", code);
        } else {
            printable.push_back(character);
        }
    }
    return printable;
}

std::string Excerpt(std::string_view word) {
    constexpr std::size_t kLongest = 40;  // bytes; leaves the error's own words on the same screen line
    return word.size() <= kLongest ? Printable(word) : Printable(word.substr(0, kLongest)) + "...";
}

}  // namespace tarn::program
