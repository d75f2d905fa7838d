#include "assembly_arguments.h"

#include "readers/model_file.h"

#include <cstddef>

namespace tarn::program {
namespace {

/// More threads than any machine has cores; keeps a slip of the finger from asking for a million.
constexpr std::size_t kMostThreads = 1024;

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

std::string RefuseEmpty(const std::string& value) {
    return value.empty() ? "must not be empty" : "";
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

void AddCoupleArguments(CLI::App& command, CoupleChoice& couples) {
    CLI::Option* const between = command.add_flag_callback(
        "--between-owners", [&couples] { couples.scope = CoupleScope::BetweenOwners; },
        "Only couples of bodies of different owners");
    CLI::Option* const within = command.add_flag_callback(
        "--within-owners", [&couples] { couples.scope = CoupleScope::WithinOwners; },
        "Only couples of bodies of one owner");
    CLI::Option* const against =
        command.add_option("--against", couples.against, "Only couples with the bodies that this matches")
            ->check(CLI::Validator(RefuseEmpty, ""))
            ->type_name("PATTERN");
    between->excludes(within)->excludes(against);
    within->excludes(against);
    command
        .add_option("--ignore", couples.ignored,
                    "Leave out couples whose bodies these match, either way round; may be repeated")
        ->allow_extra_args(false)  // what follows the two is no pattern but a file
        ->check(CLI::Validator(RefuseEmpty, ""))
        ->type_name("PATTERN PATTERN");
}

}  // namespace

const char* const kAssemblyFooter =
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
    "\n";

void AddAssemblyArguments(CLI::App& command, AssemblyOptions& options, const std::string& purpose) {
    command.add_option("FILE", options.files, purpose + ": " + ReadableFormats())->required()->type_name("");
    AddUnitArgument(command, options.unit);
    AddCoupleArguments(command, options.couples);
}

void AddUnitArgument(CLI::App& command, LengthUnit& unit) {
    AddChoice(command, "--unit", LengthUnitNames(),
              "Unit of the coordinates in files that state none, or whose word is not read; not glTF, not "
              "DAE (default mm)",
              [&unit](const std::string& name) { unit = ParseLengthUnit(name); });
}

void AddFormatArgument(CLI::App& command, ReportFormat& format, bool offers_csv) {
    std::vector<std::string> names = NamesOf(Formats());
    if (!offers_csv) std::erase(names, "csv");
    AddChoice(command, "--format", names, "How the report is written (default table)",
              [&format](const std::string& name) { format = Formats().at(name); });
}

CLI::Option* AddOutputArgument(CLI::App& command, RunOptions& options, const std::string& description) {
    return AddPath(command, "-o,--output", options.output_path, description);
}

void AddDumpArguments(CLI::App& command, RunOptions& options) {
    CLI::Option* const dump_path = AddPath(command, "--dump-stl", options.dump_path,
                                           "Write all bodies, in millimetres, as one text STL file");
    AddChoice(command, "--dump", NamesOf(DumpTypes()), "What the dump shows (default triangles)",
              [&options](const std::string& name) { options.dump_type = DumpTypes().at(name); })
        ->needs(dump_path);
}

void AddThreadsArgument(CLI::App& command, RunOptions& options) {
    command.add_option("--threads", options.thread_limit, "Use at most this many threads")
        ->check(CLI::Range(std::size_t{1}, kMostThreads))
        ->type_name("N");
}

void AddQuietArgument(CLI::App& command, RunOptions& options) {
    command.add_flag("--quiet", options.is_quiet, "Only the exit status: no report, warnings or progress");
}

void AddReportArguments(CLI::App& command, RunOptions& options) {
    AddFormatArgument(command, options.format, true);
    AddOutputArgument(command, options, "Write the report to a file, whole or not at all");
    AddThreadsArgument(command, options);
    AddQuietArgument(command, options);
}

}  // namespace tarn::program
