#pragma once

#include <string_view>

namespace tarn::program {

/// What may stand at the beginning of a text in UTF-8.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

inline bool IsLineEnd(char character) {
    return character == '\n' || character == '\r';
}

/// ASCII only, so that no locale plays a part.
inline char InLowerCase(char character) {
    const bool is_upper = character >= 'A' && character <= 'Z';
    return is_upper ? static_cast<char>(character - 'A' + 'a') : character;
}

}  // namespace tarn::program
