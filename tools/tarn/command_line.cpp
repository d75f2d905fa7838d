#include "command_line.h"

#include "assembly_arguments.h"
#include "check_command.h"
#include "clearance_command.h"
#include "console.h"
#include "info_command.h"
#include "readers/model_file.h"
#include "record_command.h"
#include "replay_command.h"

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
    "  not judged    nothing tells whether the clearance is kept. The search looks no farther than from the\n"
    "                nearest box centre of one to one of the other, and where two centres are nearer than\n"
    "                the clearance, it may not see the surfaces. Concentric parts are like that, a shaft in\n"
    "                its bush, and parts inside hollow ones. (Triangles without area are another reason.)\n"
    "A distance is never below the true one, up to rounding, and can be above it, so a couple that is\n"
    "nearer than the clearance can be missed. Tolerances are absolute and suit millimetres; those\n"
    "of \"check\" come on top.\n"
    "\n"
    "Exit status: 0 nothing intersects, touches or is too near, 1 something does, 2 the check could not be\n"
    "done. Couples that are not judged do not count.";

constexpr const char* kRecordFooter =
    "The scene has each part's triangles where they stand, in millimetres: scenes hold no placements, so\n"
    "those of the parts are baked in. It has the couples chosen, with --clearance also that, and owners as\n"
    "numbers. \"replay\" checks it; another tree over the same triangles can change where a crossing is\n"
    "shown, and what a clearance check measures.\n"
    "\n"
    "Exit status: 0 the scene is written, 2 it could not be done.";

constexpr const char* kReplayFooter =
    "A collision scene is checked as \"check\" does, a proximity scene as \"clearance\" does, each couple\n"
    "with its own clearance; see their --help. Scenes have no names of owners, so their numbers are shown.\n"
    "\n"
    "Exit status: 0 nothing is found, 1 something interferes or is too near, 2 the check could not be done.";

constexpr const char* kInfoFooter =
    "A file is a scene if its name ends in \".xml\" or it begins with \"<scene\", else a mesh file. Of a "
    "mesh\n"
    "file all couples are counted, of a scene those stored. Scenes do not tell what was dropped.\n"
    "\n"
    "Exit status: 0 it is told, 2 it could not be done.";

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
    AddAssemblyArguments(check, options.assembly, "Files to check together");
    AddReportArguments(check, options.run);
    AddDumpArguments(check, options.run);
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
    AddAssemblyArguments(command, options.assembly, "Files to check together");
    AddReportArguments(command, options.run);
    AddDumpArguments(command, options.run);
}

void AddRecordCommand(CLI::App& program, RecordOptions& options) {
    CLI::App& command =
        *program.add_subcommand("record", "Write an assembly and the couples to check as a scene file");
    command.footer(std::string(kAssemblyFooter) + kRecordFooter);
    AddAssemblyArguments(command, options.assembly, "Files to record together");
    AddOutputArgument(command, options.run, "The scene file, written whole or not at all")->required();
    command
        .add_option_function<std::string>(
            "--clearance", [&options](const std::string& text) { options.clearance = ParseClearance(text); },
            "Make it a proximity scene whose couples have this clearance, in millimetres whatever the "
            "files' unit")
        ->type_name("MM");
    AddThreadsArgument(command, options.run);
    AddQuietArgument(command, options.run);
}

void AddReplayCommand(CLI::App& program, ReplayOptions& options) {
    CLI::App& command = *program.add_subcommand("replay", "Check the couples of a scene file");
    command.footer(kReplayFooter);
    command.add_option("SCENE", options.file, "The scene file")->required()->type_name("");
    AddReportArguments(command, options.run);
}

void AddInfoCommand(CLI::App& program, InfoOptions& options) {
    CLI::App& command = *program.add_subcommand("info", "Tell what is in a mesh file or a scene file");
    command.footer(kInfoFooter);
    command.add_option("FILE", options.file, "A scene file or a mesh file: " + ReadableFormats())
        ->required()
        ->type_name("");
    AddUnitArgument(command, options.unit);
    AddFormatArgument(command, options.run.format, false);
    AddOutputArgument(command, options.run, "Write the report to a file, whole or not at all");
    AddThreadsArgument(command, options.run);
}

bool RunChosen(const CLI::App& program,
               const CheckOptions& check,
               const ClearanceOptions& clearance,
               const RecordOptions& record,
               const ReplayOptions& replay,
               const InfoOptions& info) {
    if (program.got_subcommand("check")) return RunCheck(check);
    if (program.got_subcommand("clearance")) return RunClearance(clearance);
    if (program.got_subcommand("replay")) return RunReplay(replay);
    if (program.got_subcommand("record")) {
        RunRecord(record);
    } else {
        RunInfo(info);
    }
    return false;
}

ExitStatus ParseAndRun(int argument_count, const char* const* arguments) {
    CLI::App program("Interference and clearance checks for rigid triangle meshes", "tarn");
    program.set_version_flag("--version", tarn::GetVersionText(), "Print the library's name and version");
    program.require_subcommand(1);
    CheckOptions check;
    AddCheckCommand(program, check);
    ClearanceOptions clearance;
    AddClearanceCommand(program, clearance);
    RecordOptions record;
    AddRecordCommand(program, record);
    ReplayOptions replay;
    AddReplayCommand(program, replay);
    InfoOptions info;
    AddInfoCommand(program, info);
    try {
        program.parse(argument_count, arguments);
    } catch (const CLI::CallForVersion&) {
        PrintResult(tarn::GetVersionText());
        return ExitStatus::Clear;
    } catch (const CLI::CallForHelp&) {
        PrintResult(program.help());
        return ExitStatus::Clear;
    }
    const bool found_any = RunChosen(program, check, clearance, record, replay, info);
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
