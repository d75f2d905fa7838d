#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Ostrel::Quarrix::Collisions {

/// A text argument that may be null. It views what it is made from, so it is for parameters only. Narrow
/// strings pass through unchanged; UTF-8 is what callers should hand in.
class Text {
public:
    /// Null.
    Text(std::nullptr_t) noexcept {}
    /// A view of a string that ends with NUL, not owned; null for null.
    Text(const char* text) noexcept
        : view_(text ? std::string_view(text) : std::string_view()),
          is_null_(!text) {}
    ///@{
    /// A view of the string, not owned.
    Text(std::string_view text) noexcept : view_(text), is_null_(false) {}
    Text(const std::string& text) noexcept : view_(text), is_null_(false) {}

    ///@}

    /// Whether it is null, and not only empty.
    bool IsNull() const noexcept { return is_null_; }
    /// Empty for null.
    std::string_view View() const noexcept { return view_; }
    /// A copy; empty for null.
    std::string ToString() const { return std::string(view_); }

private:
    std::string_view view_;
    bool is_null_ = true;
};

}  // namespace Ostrel::Quarrix::Collisions
