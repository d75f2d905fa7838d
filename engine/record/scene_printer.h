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
    explicit ScenePrinter(std::ostream& stream) : stream_(stream) {}

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
        stream_.write(data, static_cast<std::streamsize>(size));
    }
    void Putc(char character) override { stream_.put(character); }

private:
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
};

}  // namespace tarn::details
