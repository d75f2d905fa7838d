#include "part_directory.h"

#include "short_names.h"

#include <algorithm>

namespace tarn::program {

PartDirectory::PartDirectory(const std::vector<tarn::ICollisionBody*>& bodies,
                             const std::vector<Part>& parts,
                             const std::vector<std::string>& owners) {
    const std::vector<std::string> short_names = ShortNames(parts);
    parts_.reserve(parts.size());
    for (std::size_t number = 0; number < parts.size(); ++number) {
        numbers_.emplace(bodies[number], number);
        parts_.push_back({parts[number].name, short_names[number], owners[parts[number].owner]});
    }
}

const ReportedPart& PartDirectory::operator[](const tarn::ICollisionBody& body) const {
    return parts_[numbers_.at(&body)];
}

std::pair<std::size_t, std::size_t> PartDirectory::NumbersOf(const tarn::ICollisionBody& first,
                                                             const tarn::ICollisionBody& second) const {
    return std::minmax({numbers_.at(&first), numbers_.at(&second)});
}

}  // namespace tarn::program
