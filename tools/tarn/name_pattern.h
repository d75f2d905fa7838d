#pragma once

#include <string>
#include <string_view>

namespace tarn::program {

/// A pattern for the names of parts and owners: "*" stands for any characters, slashes included, "?" for one
/// byte, everything else for itself. It matches a name if it matches the whole name or all behind one of its
/// slashes, so "bolt*" finds "frame/left/bolt 3".
class NamePattern final {
public:
    explicit NamePattern(std::string text) : text_(std::move(text)) {}

    bool Matches(std::string_view name) const;

private:
    std::string text_;
};

}  // namespace tarn::program
