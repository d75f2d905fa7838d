#pragma once

#include "assembly.h"
#include "assembly_summary.h"
#include "console.h"
#include "couple_check.h"
#include "couple_choice.h"
#include "readers/length_unit.h"
#include "readers/model.h"
#include "size_warnings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarn::program {

/// What becomes of the placements of parts: the bodies have them, or their triangles are where they put them.
enum class Placements { OfBodies, Baked };

/// How many of a part's triangles the engine kept.
struct TriangleCounts {
    std::uint64_t kept = 0;
    std::uint64_t dropped = 0;
};

/// Reads files, names their parts, and builds their bodies. What is odd is warned about on the console.
class AssemblyLoader final {
public:
    /// `files` and `console` must outlive the loader.
    AssemblyLoader(const std::vector<std::string>& files, Console& console)
        : files_(files),
          console_(console) {}

    /// Reads all files. Throws `ProgramError`.
    void Load(LengthUnit unit);
    /// Builds all bodies; the meshes of the model are gone then. Throws `ProgramError` for a part that its
    /// placement takes beyond what a double holds.
    void Build(Placements placements);
    /// Fills the check's configuration. Throws `ProgramError` for a pattern that must match and does not.
    void ChooseCouples(CoupleCheck& check, const CoupleChoice& choice);

    const Model& model() const { return model_; }
    Assembly& assembly() { return assembly_; }
    /// One for each part.
    const std::vector<TriangleCounts>& triangle_counts() const { return triangle_counts_; }
    /// As far as it got: the steps fill it.
    const AssemblySummary& summary() const { return summary_; }

private:
    void ReadFiles(LengthUnit unit);
    void BuildBodies(Placements placements);
    std::uint64_t Look(SizeWarnings& warnings, const Part& part, std::uint64_t kept_count) const;

    const std::vector<std::string>& files_;
    Console& console_;
    Model model_;
    Assembly assembly_;
    std::vector<TriangleCounts> triangle_counts_;
    AssemblySummary summary_;
};

}  // namespace tarn::program
