#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <vector>

namespace Ostrel::Quarrix::Collisions {

/// A sequence argument that may be null: a read-only view of a vector, an array or a list in braces, whose
/// items convert to `Item` (pointers to derived classes, for example). `{}` is an empty sequence, `nullptr`
/// is null, `{nullptr}` is a sequence of one null. It views what it is made from, so it is for parameters
/// only.
template <typename Item>
class Sequence {
public:
    /// Empty.
    Sequence() noexcept = default;
    /// Null.
    Sequence(std::nullptr_t) noexcept : is_null_(true) {}
    ///@{
    /// A view of the items, not owned.
    Sequence(std::initializer_list<Item> items) noexcept : Sequence(items.begin(), items.size()) {}
    template <typename Other>
    requires std::convertible_to<const Other&, Item> Sequence(const std::vector<Other>& items)
    noexcept : Sequence(items.data(), items.size()) {}
    template <typename Other, std::size_t kSize>
    requires std::convertible_to<const Other&, Item> Sequence(const std::array<Other, kSize>& items)
    noexcept : Sequence(items.data(), items.size()) {}

    ///@}

    /// Whether it is null, and not only empty.
    bool IsNull() const noexcept { return is_null_; }
    /// 0 for null.
    std::size_t size() const noexcept { return size_; }
    /// `index` is below the size.
    Item operator[](std::size_t index) const { return at_(items_, index); }

    /// A copy of the items; empty for null.
    std::vector<Item> ToVector() const {
        std::vector<Item> items;
        items.reserve(size_);
        for (std::size_t i = 0; i < size_; ++i) items.push_back((*this)[i]);
        return items;
    }

private:
    template <typename Other>
    Sequence(const Other* items, std::size_t size) noexcept
        : items_(items),
          size_(size),
          at_([](const void* all, std::size_t index) -> Item {
              return static_cast<const Other*>(all)[index];
          }) {}

    const void* items_ = nullptr;
    std::size_t size_ = 0;
    Item (*at_)(const void* all, std::size_t index) = nullptr;
    bool is_null_ = false;
};

}  // namespace Ostrel::Quarrix::Collisions
