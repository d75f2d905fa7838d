#include "command_line.h"

#include "assembly_arguments.h"
#include "check_command.h"
#include "console.h"

#include "tarn/exception.h"
#include "tarn/version.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <map>
#include <new>

namespace tarn::program {
namespace {

constexpr const char* kCheckFooter =
    "Tolerances are absolute and suit millimetres: crossings of triangles with edges below about\n"
    "0.01 mm are not seen, and coplanar faces with edges of a metre and more, turned or far from the "
    "origin,\n"
    "can be seen to cross though they are apart.\n"
    "\n"
    "Exit status: 0 nothing interferes, 1 something does, 2 the check could not be done.";

const std::map<std::string, tarn::CheckPolicy>& Policies() {
    static const std::map<std::string, tarn::CheckPolicy> policies = {
        {"first", tarn::CheckPolicy::FirstInterferenceStop},
        {"first-triangles", tarn::CheckPolicy::FirstInterferenceStopWithTriangles},
        {"all", tarn::CheckPolicy::AllInterferences},
        {"all-triangles", tarn::CheckPolicy::AllInterferencesWithTriangles},
    };
    return policies;
}

void AddCheckCommand(CLI::App& program, CheckOptions& options) {
    CLI::App& check = *program.add_subcommand("check", "Find the parts of an assembly that interfere");
    check.footer(std::string(kAssemblyFooter) + kCheckFooter);
    AddChoice(
        check, "--policy", NamesOf(Policies()),
        "Whether to stop at the first couple found, and whether to locate crossings (default all-triangles)",
        [&options](const std::string& name) { options.policy = Policies().at(name); });
    AddAssemblyArguments(check, options.assembly);
}

ExitStatus ParseAndRun(int argument_count, const char* const* arguments) {
    CLI::App program("Interference checks for rigid triangle meshes", "tarn");
    program.set_version_flag("--version", tarn::GetVersionText(), "Print the library's name and version");
    program.require_subcommand(1);
    CheckOptions options;
    AddCheckCommand(program, options);
    try {
        program.parse(argument_count, arguments);
    } catch (const CLI::CallForVersion&) {
        PrintResult(tarn::GetVersionText());
        return ExitStatus::Clear;
    } catch (const CLI::CallForHelp&) {
        PrintResult(program.help());
        return ExitStatus::Clear;
    }
    return RunCheck(options) ? ExitStatus::Found : ExitStatus::Clear;
}

}  // namespace

ExitStatus RunProgram(int argument_count, const char* const* arguments) {
    try {
        return ParseAndRun(argument_count, arguments);
    } catch (const tarn::Exception& error) {
        PrintError(error.displayText());  // its what() is the class name alone
    } catch (const CLI::ParseError& error) {
        PrintError(std::string(error.what()) + "; see --help");
    } catch (const std::bad_alloc&) {
        PrintError("out of memory");
    } catch (const std::exception& error) {
        PrintError(error.what());
    }
    return ExitStatus::Failed;
}

}  // namespace tarn::program
