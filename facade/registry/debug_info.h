#pragma once

#include <cstdint>
#include <string>

namespace Ostrel::Quarrix::Collisions {

/// Counts the registries that were made and given up.
struct DebugInfo {
    std::string short_name;
    std::uint64_t new_count = 0;
    std::uint64_t delete_count = 0;
    std::uint64_t dispose_count = 0;

    std::string ToString() const {
        return short_name + ": count: " + std::to_string(new_count) +
               ", deleted:" + std::to_string(delete_count) + ", disposed:" + std::to_string(dispose_count);
    }
};

}  // namespace Ostrel::Quarrix::Collisions
