#include "readers/stl_text.h"

#include "readers/coordinate.h"
#include "readers/printable_text.h"
#include "readers/program_error.h"
#include "readers/text_characters.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarn::program {
namespace {

bool IsBlank(char character) {
    return character == ' ' || character == '\t' || character == '\v' || character == '\f' ||
           IsLineEnd(character);
}

/// Whether a word is the keyword, which is given in lower case.
bool IsKeyword(std::string_view word, std::string_view keyword) {
    return std::ranges::equal(word, keyword, {}, InLowerCase);
}

/// Walks through the words of a text and knows the line of the latest one. Lines end with LF, CR LF or CR.
class WordScanner {
public:
    explicit WordScanner(std::string_view text) : text_(text) {
        if (text_.starts_with(kByteOrderMark)) position_ = kByteOrderMark.size();
    }

    /// The next word, empty at the end of the text.
    std::string_view Next() {
        SkipBlanks();
        const std::size_t start = position_;
        while (position_ < text_.size() && !IsBlank(text_[position_])) ++position_;
        return text_.substr(start, position_ - start);
    }

    void SkipRestOfLine() {
        while (position_ < text_.size() && !IsLineEnd(text_[position_])) ++position_;
    }

    std::size_t line() const { return line_; }

private:
    void SkipBlanks() {
        for (; position_ < text_.size() && IsBlank(text_[position_]); ++position_) {
            const bool ends_in_next =
                text_[position_] == '\r' && text_.substr(position_ + 1).starts_with('\n');
            if (IsLineEnd(text_[position_]) && !ends_in_next) ++line_;
        }
    }

    std::string_view text_;
    std::size_t position_ = 0;
    std::size_t line_ = 1;
};

class TextStlReader {
public:
    TextStlReader(std::string_view bytes, double millimetres_per_unit)
        : scanner_(bytes),
          millimetres_per_unit_(millimetres_per_unit) {}

    std::vector<tarn::TriangleData> Read() {
        std::vector<tarn::TriangleData> triangles;
        for (std::string_view word = scanner_.Next(); !word.empty(); word = scanner_.Next()) {
            if (IsKeyword(word, "facet")) {
                triangles.push_back(ReadFacet());
            } else if (IsKeyword(word, "solid") || IsKeyword(word, "endsolid")) {
                scanner_.SkipRestOfLine();
            } else {
                FailUnexpected(word, "facet");
            }
        }
        return triangles;
    }

private:
    tarn::TriangleData ReadFacet() {
        Expect("normal");
        for (int component = 0; component < 3; ++component) scanner_.Next();
        Expect("outer");
        Expect("loop");
        std::array<double, 9> c{};
        for (std::size_t vertex = 0; vertex < 3; ++vertex) {
            Expect("vertex");
            for (std::size_t axis = 0; axis < 3; ++axis) c[3 * vertex + axis] = ReadCoordinate();
        }
        Expect("endloop");
        Expect("endfacet");
        return {c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8]};
    }

    double ReadCoordinate() {
        const std::string_view word = scanner_.Next();
        if (word.empty()) Fail("the file ends inside a facet");
        try {
            return ParseCoordinate(word, millimetres_per_unit_);
        } catch (const FormatError& error) {
            Fail(error.what());
        }
    }

    void Expect(std::string_view keyword) {
        const std::string_view word = scanner_.Next();
        if (word.empty()) Fail("the file ends inside a facet");
        if (!IsKeyword(word, keyword)) FailUnexpected(word, keyword);
    }

    [[noreturn]] void FailUnexpected(std::string_view word, std::string_view keyword) const {
        Fail(fmt::format("'{}' stands where '{}' is expected", Excerpt(word), keyword));
    }

    [[noreturn]] void Fail(std::string_view cause) const {
        throw FormatError(fmt::format("line {}: {}", scanner_.line(), cause));
    }

    WordScanner scanner_;
    double millimetres_per_unit_;
};

}  // namespace

bool LooksLikeTextStl(std::string_view bytes) {
    WordScanner scanner(bytes);
    if (!IsKeyword(scanner.Next(), "solid")) return false;
    scanner.SkipRestOfLine();
    const std::string_view second = scanner.Next();
    for (const std::string_view keyword : {"facet", "solid", "endsolid"}) {
        if (IsKeyword(second, keyword)) return true;
    }
    // Text that is broken from its first line on is still told from a binary file whose header starts with
    // "solid": the latter pads its header with zeros, or at least has some in its count or first facet.
    constexpr std::size_t kSampleSize = 512;
    return bytes.substr(0, kSampleSize).find('\0') == std::string_view::npos;
}

std::vector<tarn::TriangleData> ReadTextStl(std::string_view bytes, double millimetres_per_unit) {
    return TextStlReader(bytes, millimetres_per_unit).Read();
}

}  // namespace tarn::program
