#include "command_line.h"

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

/// More threads than any machine has cores; keeps a slip of the finger from asking for a million.
constexpr std::size_t kMostThreads = 1024;

constexpr const char* kCheckFooter =
    "Tolerances are absolute and suit millimetres: crossings of triangles with edges below about\n"
    "0.01 mm are not seen, and coplanar faces with edges of many hundreds of millimetres can be seen\n"
    "to cross though they are apart.\n"
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

void AddCheckCommand(CLI::App& program, CheckOptions& options) {
    CLI::App& check = *program.add_subcommand("check", "Find the parts of an assembly that interfere");
    check.footer(kCheckFooter);
    check.add_option("FILE", options.files, "STL files, text or binary; each is one body")
        ->required()
        ->type_name("");
    AddChoice(check, "--unit", LengthUnitNames(), "Unit of the coordinates in the files (default mm)",
              [&options](const std::string& name) { options.unit = ParseLengthUnit(name); });
    AddChoice(
        check, "--policy", NamesOf(Policies()),
        "Whether to stop at the first couple found, and whether to locate crossings (default all-triangles)",
        [&options](const std::string& name) { options.policy = Policies().at(name); });
    CLI::Option* const dump_path = check
                                       .add_option("--dump-stl", options.dump_path,
                                                   "Write all bodies, in millimetres, as one text STL file")
                                       ->check(CLI::Validator(RefuseEmpty, ""))
                                       ->type_name("FILE");
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
