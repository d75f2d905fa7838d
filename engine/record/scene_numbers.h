#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

/// \file
/// Numbers of scene files, whatever the process's locale: some write 2,25 and read "1.5" as 1.

namespace tarn::details {

/// A number as text, in a buffer of its own.
class NumberText {
public:
    /// Seventeen significant digits, as "%.17g" has them: enough to give back the same double.
    explicit NumberText(double value) {
        End(std::to_chars(text_.data(), text_.data() + text_.size() - 1, value, std::chars_format::general,
                          17));
    }
    template <typename Integer, typename = std::enable_if_t<std::is_integral_v<Integer>>>
    explicit NumberText(Integer value) {
        End(std::to_chars(text_.data(), text_.data() + text_.size() - 1, value));
    }

    const char* c_str() const { return text_.data(); }

private:
    void End(std::to_chars_result result) { *result.ptr = '\0'; }

    std::array<char, 32> text_;
};

/// What is left of a text without the blanks around it and without one plus sign in front.
std::string_view WithoutBlanksAndPlus(std::string_view text);

/// A whole text as one number, in decimal or, behind "0x", in hexadecimal digits; blanks around it and a plus
/// sign are accepted. Nothing for anything else, and for numbers outside the type's range.
std::optional<double> ParseDouble(std::string_view text);

template <typename Integer>
std::optional<Integer> ParseInteger(std::string_view text) {
    text = WithoutBlanksAndPlus(text);
    const bool is_hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (is_hexadecimal) text.remove_prefix(2);
    if (is_hexadecimal && text.starts_with('-')) return std::nullopt;
    Integer value{};
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value, is_hexadecimal ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace tarn::details
