#include "record/scene_numbers.h"

#include <cmath>

namespace tarn::details {

std::string_view WithoutBlanksAndPlus(std::string_view text) {
    constexpr const char* kBlanks = " \t\n\v\f\r";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return {};
    text = text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    return text;
}

std::optional<double> ParseDouble(std::string_view text) {
    text = WithoutBlanksAndPlus(text);
    const bool is_negative = text.starts_with('-');
    if (is_negative) text.remove_prefix(1);
    const bool is_hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (is_hexadecimal) text.remove_prefix(2);
    if (text.starts_with('-')) return std::nullopt;
    double value = 0.0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value,
                        is_hexadecimal ? std::chars_format::hex : std::chars_format::general);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    // "0xnan" and "0xinf", which are no numbers to anybody else.
    if (is_hexadecimal && !std::isfinite(value)) return std::nullopt;
    return is_negative ? -value : value;
}

}  // namespace tarn::details
