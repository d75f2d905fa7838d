#pragma once

#include "readers/model.h"
#include "reported_part.h"

#include "tarn/collision_body.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tarn::program {

/// Finds the part that a body stands for: its number, by which reports are ordered, and what they say of it.
class PartDirectory final {
public:
    PartDirectory() = default;
    /// As many bodies as parts, in the same order. `owners` are the names that the parts' owners stand for.
    PartDirectory(const std::vector<tarn::ICollisionBody*>& bodies,
                  const std::vector<Part>& parts,
                  const std::vector<std::string>& owners);

    const ReportedPart& operator[](const tarn::ICollisionBody& body) const;
    /// The numbers of a couple's parts, the lower one first.
    std::pair<std::size_t, std::size_t> NumbersOf(const tarn::ICollisionBody& first,
                                                  const tarn::ICollisionBody& second) const;

private:
    std::unordered_map<const tarn::ICollisionBody*, std::size_t> numbers_;
    std::vector<ReportedPart> parts_;
};

}  // namespace tarn::program
