#include "readers/line_words.h"

#include "readers/text_characters.h"

namespace tarn::program {
namespace {

bool IsSpace(char character) {
    return character == ' ' || character == '\t' || character == '\v' || character == '\f';
}

}  // namespace

LineWords::LineWords(std::string_view text) : text_(text) {
    if (text_.starts_with(kByteOrderMark)) position_ = kByteOrderMark.size();
}

/// Bytes of the line end at a position; 0 where none is.
std::size_t LineWords::LineEndSize(std::size_t at) const {
    if (at >= text_.size() || !IsLineEnd(text_[at])) return 0;
    return text_.substr(at).starts_with("\r\n") ? 2 : 1;
}

/// Stops at a word, or at the end of the line. Whether it is a word.
bool LineWords::SkipBlanks() {
    while (position_ < text_.size()) {
        const char character = text_[position_];
        const std::size_t joined = character == '\\' ? LineEndSize(position_ + 1) : 0;
        if (joined > 0) {
            position_ += 1 + joined;
            ++line_;
        } else if (IsSpace(character)) {
            ++position_;
        } else {
            return !IsLineEnd(character) && character != '#';
        }
    }
    return false;
}

void LineWords::SkipToLineEnd() {
    while (position_ < text_.size() && !IsLineEnd(text_[position_])) ++position_;
}

bool LineWords::NextLine() {
    // Words that nobody asked for are passed over too, with the lines that they are joined to.
    while (is_inside_ && !NextWord().empty()) {
    }
    is_inside_ = true;
    while (position_ < text_.size()) {
        if (SkipBlanks()) return true;
        SkipToLineEnd();
        if (position_ < text_.size()) {
            position_ += LineEndSize(position_);
            ++line_;
        }
    }
    return false;
}

std::string_view LineWords::NextWord() {
    if (!SkipBlanks()) return {};
    const std::size_t start = position_;
    while (position_ < text_.size() && !IsSpace(text_[position_]) && !IsLineEnd(text_[position_])) {
        if (text_[position_] == '\\' && LineEndSize(position_ + 1) > 0) break;
        ++position_;
    }
    return text_.substr(start, position_ - start);
}

std::string_view LineWords::RestOfLine() {
    std::size_t start = position_;
    SkipToLineEnd();
    std::size_t end = position_;
    while (start < end && IsSpace(text_[start])) ++start;
    while (end > start && IsSpace(text_[end - 1])) --end;
    return text_.substr(start, end - start);
}

}  // namespace tarn::program
