#pragma once

#include <tinyxml2.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace tarn::details {

/// Prints XML to a stream, laid out as the library prints a document to a file.
class ScenePrinter final : public tinyxml2::XMLPrinter {
public:
    explicit ScenePrinter(std::ostream& stream) : stream_(stream) { buffer_.reserve(2 * kBuffer); }

    /// Hands on what is printed so far. Call it at the end.
    void Flush() {
        stream_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
        buffer_.clear();
    }

    /// An attribute of any text. The library itself would write line ends as they stand, which readers take
    /// for line feeds.
    void PushText(const char* name, const std::string& value) {
        Putc(' ');
        Write(name, std::char_traits<char>::length(name));
        Write("=\"", 2);
        for (const char character : value) {
            const std::string_view escaped = Escaped(character);
            if (escaped.empty()) {
                Putc(character);
            } else {
                Write(escaped.data(), escaped.size());
            }
        }
        Putc('"');
    }

protected:
    void Write(const char* data, std::size_t size) override {
        buffer_.append(data, size);
        if (buffer_.size() >= kBuffer) Flush();
    }
    void Putc(char character) override { buffer_.push_back(character); }

private:
    static constexpr std::size_t kBuffer = 65536;

    static std::string_view Escaped(char character) {
        switch (character) {
            case '&':
                return "&amp;";
            case '<':
                return "&lt;";
            case '>':
                return "&gt;";
            case '"':
                return "&quot;";
            case '\'':
                return "&apos;";
            case '\t':
                return "&#9;";
            case '\n':
                return "&#10;";
            case '\r':
                return "&#13;";
            default:
                return {};
        }
    }

    std::ostream& stream_;
    /// The library prints in pieces of a few bytes, for which a stream is slow.
    std::string buffer_;
};

}  // namespace tarn::details
