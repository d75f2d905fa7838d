#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace tarn::details {

/// More attributes than any element of a scene has. The XML library compares each attribute of an element
/// with all before it, so a file of some megabytes in one tag would keep it busy for hours.
inline constexpr std::size_t kMostAttributes = 1000;

/// The line of the first tag with more attributes than that, if there is one. Tells tags from comments and
/// the like as the XML library does.
std::optional<std::size_t> LineOfCrowdedTag(std::string_view xml);

}  // namespace tarn::details
