#include "readers/coordinate.h"

#include "readers/printable_text.h"
#include "readers/program_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace tarn::program {
namespace {

[[noreturn]] void FailNotFinite(std::string_view word) {
    throw FormatError(fmt::format("coordinate '{}' is not finite", Excerpt(word)));
}

/// The exponent's value, held within +-10^15, which no mantissa of a file that fits in memory can outweigh.
std::int64_t DecimalExponent(std::string_view digits) {
    constexpr std::int64_t kLimit = 1'000'000'000'000'000;
    if (digits.starts_with('+')) digits.remove_prefix(1);
    std::int64_t exponent = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (error == std::errc::result_out_of_range) return digits.starts_with('-') ? -kLimit : kLimit;
    return std::clamp(exponent, -kLimit, kLimit);
}

/// For a decimal number outside a double's range: whether it lies below, not above. The conversion gives the
/// same error for both. The first digit that is not 0 decides, by its power of ten.
bool IsBelowRange(std::string_view number) {
    const std::size_t exponent_at = number.find_first_of("eE");
    const std::string_view mantissa = number.substr(0, exponent_at);
    const std::size_t leading = mantissa.find_first_of("123456789");
    if (leading == std::string_view::npos) return true;
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    std::int64_t power = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(leading);
    if (exponent_at != std::string_view::npos) power += DecimalExponent(number.substr(exponent_at + 1));
    return power < 0;
}

}  // namespace

double ConvertCoordinate(double value, double millimetres_per_unit) {
    const double millimetres = value * millimetres_per_unit;
    if (!std::isfinite(value)) throw FormatError("a coordinate is not finite");
    if (!std::isfinite(millimetres)) throw FormatError("a coordinate is not finite in millimetres");
    return millimetres;
}

double ParseCoordinate(std::string_view word, double millimetres_per_unit) {
    std::string_view number = word;
    if (number.starts_with('+') && !number.starts_with("+-")) number.remove_prefix(1);

    double value = 0;
    const char* const number_end = number.data() + number.size();
    const auto [end, error] = std::from_chars(number.data(), number_end, value);
    if (error == std::errc::invalid_argument || end != number_end) {
        throw FormatError(fmt::format("'{}' is not a number", Excerpt(word)));
    }
    if (error == std::errc::result_out_of_range) {
        if (!IsBelowRange(number)) FailNotFinite(word);
        value = 0;
    }
    if (!std::isfinite(value)) FailNotFinite(word);
    return ConvertCoordinate(value, millimetres_per_unit);
}

}  // namespace tarn::program
