#include "command_line.h"

#include "check_command.h"
#include "console.h"
#include "readers/model_file.h"

#include "tarn/exception.h"
#include "tarn/version.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <map>
#include <new>

namespace tarn::program {
namespace {

/// More threads than any machine has cores; keeps a slip of the finger from asking for a million.
constexpr std::size_t kMostThreads = 1024;

constexpr const char* kCheckFooter =
    "Every STL file is one body, every object of an OBJ file, every node of a glTF file that carries a\n"
    "mesh; nodes are named by their paths. An owner is a node of the first level that has more than one,\n"
    "or an object, or a file where several are given. glTF is in metres and comes out in millimetres.\n"
#ifdef TARN_WITH_ASSIMP
    "Files of other kinds pass through assimp: their coordinates have seven digits, and a file made to do\n"
    "harm can crash the program.\n"
#endif
    "\n"
    "The table shows of each path the shortest ending that is no other body's; JSON and CSV show it whole.\n"
    "A pattern matches the name of a body or of an owner, or all behind one of its slashes: \"*\" stands\n"
    "for any characters, \"?\" for one.\n"
    "\n"
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

const std::map<std::string, tarn::DumpType>& DumpTypes() {
    static const std::map<std::string, tarn::DumpType> types = {
        {"boxes", tarn::DumpType::BoundingBoxes},
        {"triangles", tarn::DumpType::Triangles},
    };
    return types;
}

const std::map<std::string, ReportFormat>& Formats() {
    static const std::map<std::string, ReportFormat> formats = {
        {"table", ReportFormat::Table},
        {"json", ReportFormat::Json},
        {"csv", ReportFormat::Csv},
    };
    return formats;
}

template <typename Value>
std::vector<std::string> NamesOf(const std::map<std::string, Value>& values) {
    std::vector<std::string> names;
    names.reserve(values.size());
    for (const auto& [name, value] : values) names.push_back(name);
    return names;
}

std::string RefuseEmpty(const std::string& value) {
    return value.empty() ? "must not be empty" : "";
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

/// An option whose value is a file to write.
CLI::Option* AddPath(CLI::App& command,
                     const std::string& option,
                     std::string& path,
                     const std::string& description) {
    return command.add_option(option, path, description)
        ->check(CLI::Validator(RefuseEmpty, ""))
        ->type_name("FILE");
}

void AddCoupleOptions(CLI::App& check, CoupleChoice& couples) {
    CLI::Option* const between = check.add_flag_callback(
        "--between-owners", [&couples] { couples.scope = CoupleScope::BetweenOwners; },
        "Only couples of bodies of different owners");
    CLI::Option* const within = check.add_flag_callback(
        "--within-owners", [&couples] { couples.scope = CoupleScope::WithinOwners; },
        "Only couples of bodies of one owner");
    CLI::Option* const against =
        check.add_option("--against", couples.against, "Only couples with the bodies that this matches")
            ->check(CLI::Validator(RefuseEmpty, ""))
            ->type_name("PATTERN");
    between->excludes(within)->excludes(against);
    within->excludes(against);
    check
        .add_option("--ignore", couples.ignored,
                    "Leave out couples whose bodies these match, either way round; may be repeated")
        ->allow_extra_args(false)  // what follows the two is no pattern but a file
        ->check(CLI::Validator(RefuseEmpty, ""))
        ->type_name("PATTERN PATTERN");
}

void AddCheckCommand(CLI::App& program, CheckOptions& options) {
    CLI::App& check = *program.add_subcommand("check", "Find the parts of an assembly that interfere");
    check.footer(kCheckFooter);
    check.add_option("FILE", options.files, "Files to check together: " + ReadableFormats())
        ->required()
        ->type_name("");
    AddChoice(check, "--unit", LengthUnitNames(),
              "Unit of the coordinates in files that state none, or whose word is not read; not glTF, not "
              "DAE (default mm)",
              [&options](const std::string& name) { options.unit = ParseLengthUnit(name); });
    AddCoupleOptions(check, options.couples);
    AddChoice(
        check, "--policy", NamesOf(Policies()),
        "Whether to stop at the first couple found, and whether to locate crossings (default all-triangles)",
        [&options](const std::string& name) { options.policy = Policies().at(name); });
    AddChoice(check, "--format", NamesOf(Formats()), "How the report is written (default table)",
              [&options](const std::string& name) { options.format = Formats().at(name); });
    AddPath(check, "--output", options.output_path, "Write the report to a file, whole or not at all");
    CLI::Option* const dump_path = AddPath(check, "--dump-stl", options.dump_path,
                                           "Write all bodies, in millimetres, as one text STL file");
    AddChoice(check, "--dump", NamesOf(DumpTypes()), "What the dump shows (default triangles)",
              [&options](const std::string& name) { options.dump_type = DumpTypes().at(name); })
        ->needs(dump_path);
    check.add_option("--threads", options.thread_limit, "Use at most this many threads")
        ->check(CLI::Range(std::size_t{1}, kMostThreads))
        ->type_name("N");
    check.add_flag("--quiet", options.is_quiet, "Only the exit status: no report, warnings or progress");
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
    return RunCheck(options) ? ExitStatus::Interfering : ExitStatus::Clear;
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
