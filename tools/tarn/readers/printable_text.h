#pragma once

#include <string>
#include <string_view>

namespace tarn::program {

/// The text with every byte of a control character written as \xNN, so that names and excerpts of files neither
/// break a line nor command a terminal, nor turn the direction in which it writes. Everything else, UTF-8
/// included, stays.
std::string Printable(std::string_view text);

/// The beginning of a word found in a file, of whole characters, short enough for an error line, and printable.
std::string Excerpt(std::string_view word);

}  // namespace tarn::program
