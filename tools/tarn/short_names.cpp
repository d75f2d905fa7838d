#include "short_names.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace tarn::program {
namespace {

/// The name from its end to its beginning, with a slash behind it, so that an ending that several names have
/// from behind a slash on is a common beginning that ends in a slash.
std::string Reversed(const std::string& name) {
    std::string reversed(name.rbegin(), name.rend());
    return reversed += '/';
}

/// For each text the length of the longest beginning that another has as well. In alphabetical order that
/// other one is a neighbour.
std::vector<std::size_t> SharedLengths(const std::vector<std::string>& texts) {
    std::vector<std::size_t> order(texts.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, {}, [&texts](std::size_t index) -> const std::string& { return texts[index]; });
    std::vector<std::size_t> lengths(texts.size(), 0);
    for (std::size_t place = 1; place < order.size(); ++place) {
        const std::size_t one = order[place - 1];
        const std::size_t other = order[place];
        const auto end = std::ranges::mismatch(texts[one], texts[other]).in1;
        const auto length = static_cast<std::size_t>(end - texts[one].begin());
        lengths[one] = std::max(lengths[one], length);
        lengths[other] = std::max(lengths[other], length);
    }
    return lengths;
}

}  // namespace

std::vector<std::string> ShortNames(const std::vector<Part>& parts) {
    std::vector<std::string> reversed;
    reversed.reserve(parts.size());
    for (const Part& part : parts) reversed.push_back(Reversed(part.name));
    const std::vector<std::size_t> shared = SharedLengths(reversed);

    std::vector<std::string> short_names;
    short_names.reserve(parts.size());
    for (std::size_t index = 0; index < parts.size(); ++index) {
        const std::string& name = parts[index].name;
        // From 1 on, because the end of a name that ends in a slash is no name.
        const std::size_t size = reversed[index].find('/', std::max<std::size_t>(shared[index], 1));
        const bool is_whole = parts[index].is_whole_file || size >= name.size();
        short_names.push_back(is_whole ? name : name.substr(name.size() - size));
    }
    return short_names;
}

}  // namespace tarn::program
