#pragma once

#include "assembly.h"
#include "assembly_options.h"
#include "assembly_summary.h"
#include "console.h"
#include "readers/model.h"
#include "reported_part.h"
#include "size_warnings.h"

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::program {

/// One run of a command on an assembly: load, build, dump, check, report. What the couples are checked for,
/// and how the report looks, is up to the command, which derives from this. Its configuration is then gone
/// before the bodies are that it refers to.
class AssemblyRun {
public:
    /// `command` is the command's name, for warnings. The options must outlive the run.
    AssemblyRun(const AssemblyOptions& options, std::string_view command);
    AssemblyRun(const AssemblyRun&) = delete;
    AssemblyRun& operator=(const AssemblyRun&) = delete;
    virtual ~AssemblyRun() = default;

    /// Returns whether anything was found. Throws `ProgramError` for files that cannot be read or written,
    /// and what the engine throws.
    bool Run();

protected:
    const Model& model() const { return model_; }
    Assembly& assembly() { return assembly_; }
    /// Complete once the couples are checked.
    const AssemblySummary& summary() const { return summary_; }
    /// For reports, once the couples are checked.
    ReportedPart Reported(const tarn::ICollisionBody& body) const;
    /// A warning of the command itself.
    void Warn(std::string_view warning);

private:
    // What commands do, in this order.

    /// Puts the bodies and the couples that were asked for into the configuration. Returns warnings about
    /// patterns.
    virtual std::vector<std::string> ChooseCouples() = 0;
    virtual std::uint64_t CountCouples() const = 0;
    /// Writes all bodies; the stream's precision is set.
    virtual void WriteDump(std::ostream& stream) = 0;
    virtual void CheckCouples() = 0;
    /// Turns what was found into a report. Returns whether that is anything.
    virtual bool Collect() = 0;
    virtual std::string FormattedReport() const = 0;
    virtual std::string FormattedSummary() const = 0;

    void RefuseOverwriting() const;
    void Load();
    void LimitThreads(const std::function<void()>& work) const;
    void BuildAndCheck();
    void Build();
    std::uint64_t Look(SizeWarnings& warnings, const Part& part, std::uint64_t kept_count) const;
    void ChooseAndCount();
    void Dump();
    void WriteReport() const;

    const AssemblyOptions& options_;
    std::string command_;
    Console console_;
    Model model_;
    Assembly assembly_;
    std::vector<std::string> short_names_;  // of the parts
    AssemblySummary summary_;
};

}  // namespace tarn::program
