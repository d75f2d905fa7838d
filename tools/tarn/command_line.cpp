#include "command_line.h"

#include "assembly_arguments.h"
#include "check_command.h"
#include "clearance_command.h"
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

constexpr const char* kClearanceFooter =
    "Couples are listed nearest first, in one of these states:\n"
    "  intersecting  triangles of the two cross; \"check\" shows where\n"
    "  touching      nearer than about 0.03 mm (squared distance below 0.001) at some place\n"
    "  too near      within the clearance, with the distance and the segment along which it was measured\n"
    "  not judged    within the clearance as far as the boxes tell. The search looks no farther than from\n"
    "                the nearest box centre of one to one of the other, and where two centres all but\n"
    "                coincide, it looks at nothing. Concentric parts are like that: a shaft in its bush.\n"
    "A distance is never below the true one, up to rounding, and can be above it, so a couple that is a\n"
    "little nearer than the clearance can be missed. Tolerances are absolute and suit millimetres; those\n"
    "of \"check\" come on top.\n"
    "\n"
    "Exit status: 0 nothing intersects, touches or is too near, 1 something does, 2 the check could not be\n"
    "done. Couples that are not judged do not count.";

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

void AddClearanceCommand(CLI::App& program, ClearanceOptions& options) {
    CLI::App& command = *program.add_subcommand(
        "clearance", "Find the parts of an assembly that are nearer than they may be, and where");
    command.footer(std::string(kAssemblyFooter) + kClearanceFooter);
    command
        .add_option_function<std::string>(
            "--clearance", [&options](const std::string& text) { options.clearance = ParseClearance(text); },
            "The distance within which a couple is reported, in millimetres whatever the files' unit")
        ->required()
        ->type_name("MM");
    AddAssemblyArguments(command, options.assembly);
}

ExitStatus ParseAndRun(int argument_count, const char* const* arguments) {
    CLI::App program("Interference and clearance checks for rigid triangle meshes", "tarn");
    program.set_version_flag("--version", tarn::GetVersionText(), "Print the library's name and version");
    program.require_subcommand(1);
    CheckOptions check;
    AddCheckCommand(program, check);
    ClearanceOptions clearance;
    AddClearanceCommand(program, clearance);
    try {
        program.parse(argument_count, arguments);
    } catch (const CLI::CallForVersion&) {
        PrintResult(tarn::GetVersionText());
        return ExitStatus::Clear;
    } catch (const CLI::CallForHelp&) {
        PrintResult(program.help());
        return ExitStatus::Clear;
    }
    const bool found_any = program.got_subcommand("check") ? RunCheck(check) : RunClearance(clearance);
    return found_any ? ExitStatus::Found : ExitStatus::Clear;
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
