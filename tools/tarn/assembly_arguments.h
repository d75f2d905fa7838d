#pragma once

#include "assembly_options.h"
#include "run_options.h"

#include <CLI/CLI.hpp>

#include <map>
#include <string>
#include <vector>

namespace tarn::program {

/// What the end of the help says of files, owners, names and patterns.
extern const char* const kAssemblyFooter;

/// Adds the arguments that say which assembly a command is about: files, unit, couples. `purpose` is what is
/// done with the files.
void AddAssemblyArguments(CLI::App& command, AssemblyOptions& options, const std::string& purpose);

void AddUnitArgument(CLI::App& command, LengthUnit& unit);
/// The help names CSV only where a command writes it.
void AddFormatArgument(CLI::App& command, ReportFormat& format, bool offers_csv);
/// "-o" and "--output".
CLI::Option* AddOutputArgument(CLI::App& command, RunOptions& options, const std::string& description);
void AddDumpArguments(CLI::App& command, RunOptions& options);
void AddThreadsArgument(CLI::App& command, RunOptions& options);
void AddQuietArgument(CLI::App& command, RunOptions& options);
/// What commands share that check and report: format, output, threads, quiet.
void AddReportArguments(CLI::App& command, RunOptions& options);

/// The names of the values from which an option chooses.
template <typename Value>
std::vector<std::string> NamesOf(const std::map<std::string, Value>& values) {
    std::vector<std::string> names;
    names.reserve(values.size());
    for (const auto& [name, value] : values) names.push_back(name);
    return names;
}

/// An option whose value is one of a few names.
template <typename Store>
CLI::Option* AddChoice(CLI::App& command,
                       const std::string& option,
                       const std::vector<std::string>& names,
                       const std::string& description,
                       const Store& store) {
    return command.add_option_function<std::string>(option, store, description)
        ->check(CLI::IsMember(names))
        ->type_name("NAME");
}

}  // namespace tarn::program
