#pragma once

#include <cstddef>
#include <string_view>

namespace tarn::program {

/// Walks through the lines of a text and the words of each. Lines end with LF, CR LF or CR; a backslash right
/// before a line end joins the next line to the words. A word that starts with "#" begins a comment, which
/// ends with its own line whatever its last character is.
class LineWords final {
public:
    explicit LineWords(std::string_view text);

    /// Goes to the next line that has a word. False at the end of the text.
    bool NextLine();
    /// The next word of the line, empty at its end.
    std::string_view NextWord();
    /// What is left of the line without blanks at its ends, as it stands: here a backslash joins nothing.
    std::string_view RestOfLine();
    /// The line of the latest word, counted from 1.
    std::size_t line() const { return line_; }

private:
    std::size_t LineEndSize(std::size_t at) const;
    bool SkipBlanks();
    void SkipToLineEnd();

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t line_ = 1;
    bool is_inside_ = false;  // whether a line has begun
};

}  // namespace tarn::program
