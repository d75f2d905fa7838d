#pragma once

#include "assembly.h"
#include "assembly_summary.h"
#include "couple_choice.h"
#include "part_directory.h"
#include "readers/model.h"
#include "report_format.h"

#include "tarn/dump_type.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace tarn::program {

/// A configuration, what its couples are checked for, and what was found. Interferences and clearances differ
/// in nothing else for the program. The bodies must outlive it, unless the configuration releases them.
class CoupleCheck {
public:
    CoupleCheck() = default;
    CoupleCheck(const CoupleCheck&) = delete;
    CoupleCheck& operator=(const CoupleCheck&) = delete;
    virtual ~CoupleCheck() = default;

    /// Puts the bodies of an assembly and the couples that were asked for into the configuration, which must
    /// be empty. Returns warnings about patterns.
    virtual std::vector<std::string> ChooseCouples(Assembly& assembly,
                                                   const Model& model,
                                                   const CoupleChoice& choice) = 0;
    virtual std::vector<tarn::ICollisionBody*> Bodies() const = 0;
    virtual std::uint64_t CountCouples() const = 0;
    /// Writes all bodies; the stream's precision is up to the caller.
    virtual void WriteDump(tarn::DumpType type, std::ostream& stream) = 0;
    /// Writes the configuration as a scene. Throws what `IRecorder::Store` throws.
    virtual void Store(const std::string& path) = 0;

    virtual void Check() = 0;
    /// After `Check`: turns what was found into a report. Returns whether that is anything.
    virtual bool Collect(const PartDirectory& parts, const AssemblySummary& summary) = 0;

    // After `Collect`.

    virtual std::vector<std::string> Warnings() const { return {}; }
    virtual std::string FormattedReport(ReportFormat format) const = 0;
    virtual std::string FormattedSummary() const = 0;
};

}  // namespace tarn::program
