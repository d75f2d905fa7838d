#include "size_warnings.h"

#include "readers/program_error.h"

#include <fmt/format.h>

#include <cmath>

namespace tarn::program {

std::uint64_t SizeWarnings::Look(const Part& part,
                                 const std::vector<Mesh>& meshes,
                                 std::uint64_t kept_count) {
    std::vector<tarn::TriangleData> placed;
    for (const std::size_t mesh : part.meshes) {
        const std::vector<tarn::TriangleData> more = Placed(meshes[mesh].triangles, part.placement);
        placed.insert(placed.end(), more.begin(), more.end());
    }
    const PartSize size = MeasurePart(placed);
    if (!std::isfinite(size.reach)) {
        throw FormatError(fmt::format("{}: its placement takes it beyond all numbers", part.name));
    }
    const SizeDoubt doubt = DoubtOf(size);
    if (kept_count == 0) {
        Add(invalid_, part,
            fmt::format("none of its {} triangles is valid (each has an edge of 0.0003 mm or less), so it "
                        "is as good as not there",
                        placed.size()));
    } else if (doubt != SizeDoubt::None) {
        Add(doubt == SizeDoubt::TooFine ? too_fine_ : too_large_, part, DescribeDoubt(doubt, size));
    }
    return placed.size();
}

void SizeWarnings::Add(Doubt& doubt, const Part& part, std::string warning) {
    if (doubt.count++ == 0) {
        doubt.part = part.name;
        doubt.warning = std::move(warning);
    }
}

std::vector<std::pair<std::string, std::string>> SizeWarnings::Summed() const {
    std::vector<std::pair<std::string, std::string>> warnings;
    for (const Doubt* const doubt : {&invalid_, &too_fine_, &too_large_}) {
        if (doubt->count == 0) continue;
        const std::size_t others = doubt->count - 1;
        warnings.emplace_back(doubt->part, others == 0 ? doubt->warning
                                                       : fmt::format("{} ({} more parts are like that)",
                                                                     doubt->warning, others));
    }
    return warnings;
}

}  // namespace tarn::program
